// Publishes a database to scripts: global tables, and the metatables of objects.
#pragma once

#include "foundation/nxLC/impl/Binding.h"

namespace nxLC::impl {

// All of these run in bodies of `protect`: they may raise and throw.

/// Creates the global tables of all classes and functions, and adds new members to existing ones.
void publishAll(Binding& binding, lua_State* state);
/// Creates the state's tables for a class if they do not exist.
ClassTables const& tablesOf(Binding& binding, lua_State* state, nxRFL::Class const& objectClass);
/// Pushes the class as scripts see it.
void pushClass(Binding& binding, lua_State* state, nxRFL::Class const& pushed);

/// Null when the state does not have them yet. Never raises.
[[nodiscard]] inline ClassTables const* knownTables(Binding const& binding, nxRFL::Class const& objectClass) noexcept {
    std::size_t const index = objectClass.index();
    bool const isKnown = index < binding.classes.size() && binding.classes[index].metatable != LUA_NOREF;
    return isKnown ? &binding.classes[index] : nullptr;
}

}  // namespace nxLC::impl
