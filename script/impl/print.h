// The print function of scripts.
#pragma once

#include "script/impl/lua.h"

namespace nxSupport::impl {

/// Prints its arguments on the application output, separated by tabs and followed by a newline. Never fails.
int print(lua_State* state);

}  // namespace nxSupport::impl
