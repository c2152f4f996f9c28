// Implements the check.
#include "foundation/nxLC/StackChecker.h"

#include <cstdio>
#include <cstdlib>

#include "foundation/nxLC/impl/lua.h"

namespace nxLC {

StackChecker::StackChecker(lua_State* state, int count) noexcept
    : state_(state), expected_(lua_gettop(state) + count) {}

StackChecker::~StackChecker() {
#if !defined(NDEBUG)
    int const top = lua_gettop(state_);
    if (top == expected_ || std::uncaught_exceptions() != exceptions_) return;
    std::fprintf(stderr, "the Lua stack holds %d values where %d are expected\n", top, expected_);
    std::abort();
#endif
}

}  // namespace nxLC
