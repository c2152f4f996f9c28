// Bounds what one call of a library function may take.
#pragma once

#include <initializer_list>

#include "foundation/nxLC/State.h"
#include "foundation/nxLC/impl/lua.h"

namespace nxLC::impl {

/// Wraps functions of the global table `table`. `wrapper` finds the function as its first upvalue and `flag` as its
/// second. Raises.
void wrap(lua_State* state, char const* table, std::initializer_list<char const*> names, lua_CFunction wrapper,
          bool flag = false);

/// Makes the opened libraries refuse arguments with which one call would take for ever, and count the work that Lua
/// does in one instruction. In a sandbox, which may be hostile, more functions count. Raises.
void boundLibraries(lua_State* state, Library library);

}  // namespace nxLC::impl
