// Lua's own functions that catch errors or make coroutines, made to let a script end.
#pragma once

#include "foundation/nxLC/impl/lua.h"

namespace nxLC::impl {

/// Puts pcall, xpcall, load, coroutine.resume, create and wrap into the places of Lua's own, as far as there are any.
/// They do the same, but the first four pass on the error of a script that is to end, and the others have the meter
/// count what the coroutine will run: otherwise each of many threads could go on for as long as its own hook does not
/// strike. The anchor is on top. Raises.
void replaceCatchingFunctions(lua_State* state);

}  // namespace nxLC::impl
