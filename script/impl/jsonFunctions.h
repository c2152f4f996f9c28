// Converts JSON text to Lua values and back: functions of the table `nx`.
#pragma once

#include "script/impl/lua.h"

namespace nxSupport::impl {

/// decodeJSON2: returns the value, or nothing.
int decodeJson2(lua_State* state);
/// decodeJSON: returns the value, or nil and an error message.
int decodeJson(lua_State* state);
/// encodeJSON: returns the text, or nil and an error message.
int encodeJson(lua_State* state);

}  // namespace nxSupport::impl
