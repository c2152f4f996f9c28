// The only function that runs code that may raise Lua errors.
#pragma once

#include <exception>

#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxLC/protect.h"

namespace nxLC::impl {

/// Runs `body` on the `arguments` values on top, with the error handler at index `handler` unless that is 0. Returns
/// the status of lua_pcall; not 0 means that the error is on top. If the body throws, the exception is in `error` and
/// there are no results.
int runProtected(lua_State* state, int arguments, int results, int handler, Body body, void* context,
                 std::exception_ptr& error);

}  // namespace nxLC::impl
