// The functions that Lua calls for members of classes and of tables.
#pragma once

#include "foundation/nxLC/impl/values.h"
#include "foundation/nxRFL/Function.h"

namespace nxLC::impl {

/// The content of a userdata by which functions find a member together with the binding.
struct MemberCell {
    Anchor const* anchor;
    nxRFL::Member const* member;
};

/// Calls a native function with the arguments on the stack of the running function. `binding` is null when the state
/// has begun to close.
int callFunction(Binding* binding, lua_State* state, nxRFL::Function const& function, ShortText& text) noexcept;

// Upvalue: the cell of the member.
int callMember(lua_State* state);
int beginIteration(lua_State* state);

// Upvalues: the anchor, the table of the members, in which properties are cells.
int indexObject(lua_State* state);
/// `__index` of a table of members where objects have no properties. Upvalue: the name of the class.
int missMember(lua_State* state);
int assignProperty(lua_State* state);

}  // namespace nxLC::impl
