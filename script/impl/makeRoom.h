// Bounding how deep tables nest.
#pragma once

#include "foundation/nxRFL/Exception.h"
#include "script/impl/lua.h"

namespace nxSupport::impl {

/// Makes room for a table, a key and a plain value. Throws where tables nest so deeply that either stack might end:
/// each level takes one or two slots of Lua's and some hundred bytes of the native one. May raise.
inline void makeRoom(lua_State* state) {
    constexpr int mostSlots = 4000;
    if (lua_gettop(state) > mostSlots || !lua_checkstack(state, 4))
        throw nxRFL::Exception("the value is nested too deeply");
}

}  // namespace nxSupport::impl
