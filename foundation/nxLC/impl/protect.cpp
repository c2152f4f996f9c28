// Running bodies that may raise, and raising what C++ code threw.
#include "foundation/nxLC/protect.h"

#include <cstdio>
#include <cstdlib>

#include "foundation/nxLC/impl/Binding.h"
#include "foundation/nxLC/impl/errors.h"
#include "foundation/nxLC/impl/pushAddress.h"
#include "foundation/nxLC/impl/runProtected.h"

namespace nxLC::impl {

namespace {

constexpr char runnerKey = 0;  // its address is the runner's key in the registry

struct Job {
    Body body;
    void* context;
    std::exception_ptr& error;
};

int runJob(lua_State* state) {
    auto* const job = static_cast<Job*>(lua_touserdata(state, 1));
    lua_remove(state, 1);
    try {
        return job->body(state, job->context);
    } catch (std::exception const&) {  // errors of a Lua that throws them are of another type
        job->error = std::current_exception();
    }
    return 0;
}

int installRunner(lua_State* state) {
    pushAddress(state, runnerKey);
    lua_pushcfunction(state, &runJob);
    lua_rawset(state, LUA_REGISTRYINDEX);
    return 0;
}

void pushRunner(lua_State* state) {
    auto const fetch = [state] {
        pushAddress(state, runnerKey);
        lua_rawget(state, LUA_REGISTRYINDEX);
        return !lua_isnil(state, -1);
    };
    if (fetch()) return;
    lua_pop(state, 1);
    if (lua_cpcall(state, &installRunner, nullptr) != 0) throw takeError(state);
    fetch();
}

}  // namespace

int runProtected(lua_State* state, int arguments, int results, int handler, Body body, void* context,
                 std::exception_ptr& error) {
    Job job{body, context, error};
    pushRunner(state);
    lua_insert(state, -arguments - 1);
    lua_pushlightuserdata(state, &job);
    lua_insert(state, -arguments - 1);
    int const status = lua_pcall(state, arguments + 1, results, handler);
    if (status == 0 && error && results > 0) lua_pop(state, results);
    return status;
}

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
