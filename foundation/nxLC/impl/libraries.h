// Lua's own libraries, all or the harmless ones.
#pragma once

#include "foundation/nxLC/State.h"
#include "foundation/nxLC/impl/lua.h"

namespace nxLC::impl {

/// Raises.
void openLibraries(lua_State* state, Library library);

}  // namespace nxLC::impl
