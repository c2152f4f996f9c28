// Copies values between a bound state and reflection stacks.
#include "foundation/nxLC/stackValues.h"

#include "foundation/nxLC/impl/values.h"

namespace nxLC {

namespace {

impl::Binding& bound(lua_State* state) {
    impl::Binding* const binding = impl::Binding::find(state);
    if (!binding) throw nxRFL::Exception("the Lua state is not bound");
    return *binding;
}

}  // namespace

void readFromLua(lua_State* state, nxRFL::Stack& stack, int first) {
    impl::readValues(bound(state), state, first, stack);
}

int writeToLua(lua_State* state, nxRFL::Stack const& stack) {
    impl::Binding& binding = bound(state);
    int const before = lua_gettop(state);
    protect(state, 0, LUA_MULTRET, [&](lua_State* inner) { return impl::pushItems(binding, inner, stack); });
    return lua_gettop(state) - before;
}

}  // namespace nxLC
