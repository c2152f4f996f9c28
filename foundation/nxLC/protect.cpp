// Converts C++ exceptions to Lua errors and back.
#include "foundation/nxLC/protect.h"

#include <cstdio>
#include <cstdlib>

#include "foundation/nxLC/impl/errors.h"
#include "foundation/nxLC/impl/lua.h"
#include "foundation/nxLC/impl/runProtected.h"

namespace nxLC::impl {

void protectBody(lua_State* state, int arguments, int results, Body body, void* context) {
    std::exception_ptr error;
    if (runProtected(state, arguments, results, 0, body, context, error) != 0) throw takeError(state);
    if (error) std::rethrow_exception(error);
}

void ErrorText::set(char const* text) noexcept { std::snprintf(bytes, sizeof bytes, "%s", text); }

void raise(lua_State* state, ErrorText const& text) {
    luaL_error(state, "%s", text.bytes);
    std::abort();  // not reached
}

}  // namespace nxLC::impl
