// Values of a Lua state on reflection stacks, and back.
#pragma once

#include "foundation/nxRFL/Stack.h"

struct lua_State;

namespace nxLC {

// Requires everywhere: the state is bound. Failing throws an `nxRFL::Exception`; no error of Lua is raised.

/// Appends the Lua values from index `first` up to the top to `stack`. They stay where they are.
NX_API void readFromLua(lua_State* state, nxRFL::Stack& stack, int first);

/// Pushes all items of `stack` and gives their number. Beyond a few, the caller makes room on the Lua stack before.
NX_API int writeToLua(lua_State* state, nxRFL::Stack const& stack);

}  // namespace nxLC
