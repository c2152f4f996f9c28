// Separates C++ exceptions and Lua errors.
#pragma once

#include <exception>
#include <type_traits>

#include "foundation/nxRFL/Exception.h"
#include "foundation/ur/Export.h"

struct lua_State;

namespace nxLC {

// A Lua error in the plain C build skips C++ destructors, and an exception must not pass through Lua. So a frame either
// calls code that may raise Lua errors, or has objects with destructors and calls code that may throw. `guard` enters
// the second kind from the first, `protect` the first from the second.

namespace impl {

using Body = int (*)(lua_State* state, void* context);

NX_API void protectBody(lua_State* state, int arguments, int results, Body body, void* context);

/// The text of an exception in a buffer that needs no destructor. Longer texts are cut.
struct NX_API ErrorText {
    char bytes[1024];
    void set(char const* text) noexcept;
};
[[noreturn]] NX_API void raise(lua_State* state, ErrorText const& text);

template <class Function>
int attempt(Function& function, ErrorText& error) noexcept {
    try {
        return function();
    } catch (std::exception const& exception) {
        error.set(exception.what());
    } catch (...) {
        error.set("unknown exception");
    }
    return -1;
}

}  // namespace impl

/// Calls `function(state)`, which may raise Lua errors, from code that must not: errors are thrown as an
/// `nxRFL::Exception`, and exceptions pass through. The function finds `arguments` values on top of the stack, from
/// index 1 on, returns how many results it leaves on top, and has nothing that needs a destructor. Pops the arguments
/// and pushes `results` values. Works in every state, bound or not.
template <class Function>
void protect(lua_State* state, int arguments, int results, Function function) {
    static_assert(std::is_trivially_destructible_v<Function>);
    impl::protectBody(
        state, arguments, results,
        [](lua_State* inner, void* context) { return (*static_cast<Function*>(context))(inner); }, &function);
}

/// The body of a function that Lua calls: `return nxLC::guard(state, [&] { … });`. The body returns how many results it
/// has pushed. It may have any objects and throw, but not raise Lua errors. Its exception becomes a Lua error that
/// starts with the place of the call, raised after all its objects are destroyed.
template <class Function>
int guard(lua_State* state, Function function) {
    static_assert(std::is_trivially_destructible_v<Function>);
    impl::ErrorText error;
    int const results = impl::attempt(function, error);
    if (results < 0) impl::raise(state, error);
    return results;
}

}  // namespace nxLC
