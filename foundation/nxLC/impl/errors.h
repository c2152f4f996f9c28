// Converts Lua errors to exceptions with the calls that led to them.
#pragma once

#include <cstddef>

#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxRFL/Exception.h"

namespace nxLC::impl {

class Binding;

/// The approximate limit of one trace. Scripts may use function names of any length and nest calls at will.
constexpr std::size_t mostTraceBytes = 16384;

/// Pops the error on top of the stack and returns it.
[[nodiscard]] nxRFL::Exception takeError(lua_State* state);

/// The error handler of calls into scripts. Upvalues: the anchor, debug.traceback. Converts errors to text and keeps
/// the trace in the binding.
int traceError(lua_State* state);
/// As takeError, with the trace from the handler.
[[nodiscard]] nxRFL::Exception takeTracedError(Binding& binding, lua_State* state);

}  // namespace nxLC::impl
