// JSON text as Lua values.
#pragma once

#include "script/impl/lua.h"

namespace nxSupport::impl {

/// decodeJSON2 of the table `nx`.
int decodeJson(lua_State* state);

}  // namespace nxSupport::impl
