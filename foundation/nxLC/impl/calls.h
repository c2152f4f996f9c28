// The functions that Lua calls for members of classes and tables.
#pragma once

#include "foundation/nxLC/impl/values.h"
#include "foundation/nxRFL/Function.h"

namespace nxLC::impl {

/// The content of a userdata through which functions find a member and its binding.
struct MemberCell {
    Anchor const* anchor;
    nxRFL::Member const* member;
};

/// Calls a native function with the arguments on the stack of the running function. `binding` is null when the state
/// has begun to close.
int callFunction(Binding* binding, lua_State* state, nxRFL::Function const& function, ShortText& text) noexcept;

// First upvalue: the cell of the member.
int callMember(lua_State* state);
int beginIteration(lua_State* state);

// Upvalues: the anchor, the table of members, where properties are cells, and the cell for other names, or nil.
int indexObject(lua_State* state);
/// `__index` of a table of members for objects without properties. Upvalue: the name of the class.
int missMember(lua_State* state);
int assignProperty(lua_State* state);

}  // namespace nxLC::impl
