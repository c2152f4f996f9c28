// Opens Lua's own libraries, all or the safe ones.
#pragma once

#include "foundation/nxLC/State.h"
#include "foundation/nxLC/impl/lua.h"

namespace nxLC::impl {

/// Raises.
void openLibraries(lua_State* state, Library library);

/// Removes the finalizers from the metatables of proxies that scripts created. Requires: room for five values on the
/// stack.
void dropFinalizers(lua_State* state) noexcept;

}  // namespace nxLC::impl
