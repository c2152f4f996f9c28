// Completes names in unfinished lines of Lua.
#pragma once

#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"

struct lua_State;

namespace nxLC {

/// The possible completions of an unfinished line of Lua.
struct Completion {
    std::size_t begin;                    ///< where the unfinished name begins; the text before it stays
    ur::vector<urString::CString> names;  ///< the whole names, in byte order; empty when none fits
};

/// Completes the expression at the end of `line`, such as "nxSupport.Con" or "host.domain.current". Follows global
/// tables, the objects in them and the types of their properties; proposes fields and properties after a dot, methods
/// after a colon. Calls nothing, not even metamethods, and raises nothing. Works in every state; an unbound state has
/// no objects.
[[nodiscard]] NX_API Completion completions(lua_State* state, std::string_view line);

}  // namespace nxLC
