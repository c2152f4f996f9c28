// Lua's own libraries, all or the harmless ones.
#pragma once

#include "foundation/nxLC/State.h"
#include "foundation/nxLC/impl/lua.h"

namespace nxLC::impl {

/// Raises.
void openLibraries(lua_State* state, Library library);

/// Takes the finalizers out of the metatables of the proxies that scripts have made. Requires: room for five values on
/// the stack.
void dropFinalizers(lua_State* state) noexcept;

}  // namespace nxLC::impl
