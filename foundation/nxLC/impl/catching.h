// Replaces Lua functions that catch errors or create coroutines, so that scripts can be ended.
#pragma once

#include "foundation/nxLC/impl/lua.h"

namespace nxLC::impl {

/// Replaces pcall, xpcall, load, coroutine.resume, create and wrap, as far as they exist. The replacements do the same,
/// but the first four pass on the error of a script that must end. The others make the meter count the coroutine's
/// instructions: otherwise each of many threads could run until its own hook fires. The anchor is on top. Raises.
void replaceCatchingFunctions(lua_State* state);

}  // namespace nxLC::impl
