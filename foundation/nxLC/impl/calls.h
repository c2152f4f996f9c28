// The functions that Lua calls for members of classes and of tables.
#pragma once

#include "foundation/nxLC/impl/values.h"
#include "foundation/nxRFL/Function.h"

namespace nxLC::impl {

/// Calls a native function with the arguments on the stack of the running function, whose first upvalue is the anchor.
int callFunction(lua_State* state, nxRFL::Function const& function, ShortText& text) noexcept;

// Upvalues: the anchor, the address of the member.
int callMember(lua_State* state);
int beginIteration(lua_State* state);

// Upvalues: the anchor, the table of the members.
int indexObject(lua_State* state);
int assignProperty(lua_State* state);

}  // namespace nxLC::impl
