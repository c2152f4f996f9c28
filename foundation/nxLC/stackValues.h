// Copies values between a Lua state and reflection stacks.
#pragma once

#include "foundation/nxRFL/Stack.h"

struct lua_State;

namespace nxLC {

// Requires everywhere: the state is bound. On failure they throw an `nxRFL::Exception`; they raise no Lua errors.

/// Appends the Lua values from index `first` up to the top to `stack`. They stay on the Lua stack.
NX_API void readFromLua(lua_State* state, nxRFL::Stack& stack, int first);

/// Pushes all items of `stack` and returns their number. For many, the caller first makes room on the Lua stack.
NX_API int writeToLua(lua_State* state, nxRFL::Stack const& stack);

}  // namespace nxLC
