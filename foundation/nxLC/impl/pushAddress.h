// Keys and marks that scripts cannot make.
#pragma once

#include "foundation/nxLC/impl/lua.h"

namespace nxLC::impl {

/// Pushes the address of a variable whose content does not matter. Never raises.
inline void pushAddress(lua_State* state, char const& place) noexcept {
    lua_pushlightuserdata(state, const_cast<char*>(&place));
}

}  // namespace nxLC::impl
