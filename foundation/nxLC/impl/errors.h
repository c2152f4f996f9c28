// Errors of Lua as exceptions, with the calls that led to them.
#pragma once

#include <cstddef>

#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxRFL/Exception.h"

namespace nxLC::impl {

class Binding;

/// Of one trace, about. A script has names of functions as long as it likes, and nests calls as it likes.
constexpr std::size_t mostTraceBytes = 16384;

/// What the error on top of the stack says; takes it off.
[[nodiscard]] nxRFL::Exception takeError(lua_State* state);

/// The error handler of calls into scripts. Upvalues: the anchor, debug.traceback. Turns what is no text into one and
/// keeps the trace in the binding.
int traceError(lua_State* state);
/// As takeError, with the trace that the handler has left.
[[nodiscard]] nxRFL::Exception takeTracedError(Binding& binding, lua_State* state);

}  // namespace nxLC::impl
