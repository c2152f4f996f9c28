// JSON text as Lua values, and back: functions of the table `nx`.
#pragma once

#include "script/impl/lua.h"

namespace nxSupport::impl {

/// decodeJSON2: the value, or nothing.
int decodeJson2(lua_State* state);
/// decodeJSON: the value, or nil and what is wrong with the text.
int decodeJson(lua_State* state);
/// encodeJSON: the text, or nil and why there is none.
int encodeJson(lua_State* state);

}  // namespace nxSupport::impl
