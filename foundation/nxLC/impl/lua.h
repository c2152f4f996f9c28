// Includes Lua 5.1, the plain C library or its C++ build: the headers are the same.
#pragma once

#include <lua.hpp>

namespace nxLC::impl {

/// Pushes the address of a variable as a key that scripts cannot create; its value does not matter. Never raises.
inline void pushAddress(lua_State* state, char const& place) noexcept {
    lua_pushlightuserdata(state, const_cast<char*>(&place));
}

}  // namespace nxLC::impl
