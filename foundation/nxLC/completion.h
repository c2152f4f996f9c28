// Going on with a name that somebody is typing.
#pragma once

#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"

struct lua_State;

namespace nxLC {

/// What may stand at the end of an unfinished line of Lua.
struct Completion {
    std::size_t begin;                    ///< where the unfinished name begins; all before it stays
    ur::vector<urString::CString> names;  ///< the whole names, in the order of bytes; empty when none fits
};

/// Completes the expression at the end of `line`, such as "nxSupport.Con" or "host.domain.current": follows global
/// tables, the objects in them and the types of their properties, and proposes fields and properties behind a dot,
/// methods behind a colon. Calls nothing, metamethods included, and raises nothing. Works in every state; one that is
/// not bound has no objects.
[[nodiscard]] NX_API Completion completions(lua_State* state, std::string_view line);

}  // namespace nxLC
