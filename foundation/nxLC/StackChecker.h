// Holding functions to their effect on the Lua stack.
#pragma once

#include <exception>

#include "foundation/ur/Export.h"

struct lua_State;

namespace nxLC {

/// Checks at the end of its scope that the Lua stack holds exactly `count` more values than at the beginning.
///
/// A difference is a mistake in the program: it is told on the standard error, and the program aborted. Release builds
/// do not look. Nothing is checked when an exception leaves the scope, or an error of Lua jumps out of it.
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
