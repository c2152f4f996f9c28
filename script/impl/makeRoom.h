// Limits the nesting of tables.
#pragma once

#include "foundation/nxRFL/Exception.h"
#include "script/impl/lua.h"

namespace nxSupport::impl {

/// Reserves Lua stack for a table, a key and a plain value. Throws if the nesting could exhaust the Lua or the native
/// stack: each level takes one or two Lua slots and a few hundred bytes of native stack. May raise.
inline void makeRoom(lua_State* state) {
    constexpr int mostSlots = 4000;
    if (lua_gettop(state) > mostSlots || !lua_checkstack(state, 4))
        throw nxRFL::Exception("the value is nested too deeply");
}

}  // namespace nxSupport::impl
