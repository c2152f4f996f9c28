// Calls through lua_pcall.
#include "foundation/nxLC/impl/runProtected.h"

#include "foundation/nxLC/impl/errors.h"

namespace nxLC::impl {

namespace {

constexpr char runnerKey = 0;  // its address is the runner's registry key

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
    } catch (std::exception const&) {  // a Lua that throws its errors uses another type
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

}  // namespace nxLC::impl
