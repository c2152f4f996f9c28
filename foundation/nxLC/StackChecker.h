// Checks the effect of functions on the Lua stack.
#pragma once

#include <exception>

#include "foundation/ur/Export.h"

struct lua_State;

namespace nxLC {

/// Checks at the end of its scope that the Lua stack holds exactly `count` more values than at the beginning.
///
/// A difference is a programming error: it prints a message to standard error and aborts the program. Release builds do
/// not check. Nothing is checked when an exception or a Lua error leaves the scope.
class NX_API StackChecker {
public:
    StackChecker(lua_State* state, int count) noexcept;
    StackChecker(StackChecker const&) = delete;
    StackChecker& operator=(StackChecker const&) = delete;
    ~StackChecker();

private:
    lua_State* state_;
    int expected_;
    int exceptions_ = std::uncaught_exceptions();
};

}  // namespace nxLC
