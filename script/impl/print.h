// The print of scripts.
#pragma once

#include "script/impl/lua.h"

namespace nxSupport::impl {

/// Prints its arguments, with tabs between them and a newline behind, on the application output. Never fails.
int print(lua_State* state);

}  // namespace nxSupport::impl
