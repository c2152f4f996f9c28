// What scripts see of a database: global tables, and the metatables of objects.
#pragma once

#include "foundation/nxLC/impl/Binding.h"

namespace nxLC::impl {

// All of these run in bodies of `protect`: they may raise and throw.

/// Makes the global tables of all classes and functions, and fills those that are there with what is new.
void publishAll(Binding& binding, lua_State* state);
/// Makes what the state keeps for a class if it has not got it.
ClassTables const& tablesOf(Binding& binding, lua_State* state, nxRFL::Class const& objectClass);
/// Pushes what scripts see as the class itself.
void pushClass(Binding& binding, lua_State* state, nxRFL::Class const& pushed);

/// Null when the state has not got it yet. Never raises.
[[nodiscard]] inline ClassTables const* knownTables(Binding const& binding, nxRFL::Class const& objectClass) noexcept {
    std::size_t const index = objectClass.index();
    bool const isKnown = index < binding.classes.size() && binding.classes[index].metatable != LUA_NOREF;
    return isKnown ? &binding.classes[index] : nullptr;
}

}  // namespace nxLC::impl
