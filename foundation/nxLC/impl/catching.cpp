// Catches errors, except those that end a script.
#include "foundation/nxLC/impl/catching.h"

#include "foundation/nxLC/impl/Binding.h"

namespace nxLC::impl {

namespace {

bool isStopped(lua_State* state) noexcept {
    Binding const* const binding = bindingOf(state);
    return binding && binding->meter.stopped();
}

/// A pending error was caught.
void noteCatch(lua_State* state) noexcept {
    Binding* const binding = bindingOf(state);
    if (binding && binding->passedOn) binding->passedOn->caught = true;
}

/// The results of pcall and xpcall: whether the call succeeded, then everything from `first` on.
int finishCall(lua_State* state, int status, int first) {
    if (status != 0 && isStopped(state)) return lua_error(state);
    noteCatch(state);
    lua_pushboolean(state, status == 0);
    lua_insert(state, first);
    return lua_gettop(state) - first + 1;
}

int callAndCatch(lua_State* state) {
    luaL_checkany(state, 1);
    return finishCall(state, lua_pcall(state, lua_gettop(state) - 1, LUA_MULTRET, 0), 1);
}

/// Calls the second upvalue with the arguments; returns everything on the stack as results.
int callUpvalue(lua_State* state) {
    lua_pushvalue(state, lua_upvalueindex(2));
    lua_insert(state, 1);
    lua_call(state, lua_gettop(state) - 1, LUA_MULTRET);
    return lua_gettop(state);
}

/// If the hook raised the error, the handler in the second upvalue would run inside the hook, uncounted.
int handleUnlessStopped(lua_State* state) { return isStopped(state) ? lua_gettop(state) : callUpvalue(state); }

int callWithHandler(lua_State* state) {
    luaL_checkany(state, 2);
    lua_settop(state, 2);
    lua_pushvalue(state, lua_upvalueindex(1));
    lua_insert(state, 2);
    lua_pushcclosure(state, &handleUnlessStopped, 2);
    lua_insert(state, 1);
    return finishCall(state, lua_pcall(state, 0, LUA_MULTRET, 1), 2);
}

/// Makes the meter count the coroutine that the function in the second upvalue created.
void count(lua_State* state, lua_State* coroutine) {
    Binding* const binding = bindingOf(state);
    if (coroutine && binding) binding->meter.begin(state, coroutine);
}

int create(lua_State* state) {
    int const results = callUpvalue(state);
    count(state, lua_tothread(state, -1));
    return results;
}

/// The original returns a function whose only upvalue is the coroutine.
int wrap(lua_State* state) {
    int const results = callUpvalue(state);
    if (!lua_getupvalue(state, -1, 1)) return results;
    count(state, lua_tothread(state, -1));
    lua_pop(state, 1);
    return results;
}

/// Calls the original function in the second upvalue, which catches errors.
int callCatcher(lua_State* state) {
    int const results = callUpvalue(state);
    noteCatch(state);
    return isStopped(state) ? luaL_error(state, "%s", bindingOf(state)->meter.reason()) : results;
}

/// Pushes a field of the table on top, without metamethods.
void pushField(lua_State* state, char const* name) {
    lua_pushstring(state, name);
    lua_rawget(state, -2);
}

/// Replaces a function in the table on top. `anchor` is the index of the anchor.
void replace(lua_State* state, int anchor, char const* name, lua_CFunction replacement) {
    pushField(state, name);
    if (lua_isfunction(state, -1)) {
        lua_pushstring(state, name);
        lua_pushvalue(state, anchor);
        lua_pushvalue(state, -3);
        lua_pushcclosure(state, replacement, 2);
        lua_rawset(state, -4);
    }
    lua_pop(state, 1);
}

}  // namespace

void replaceCatchingFunctions(lua_State* state) {
    int const anchor = lua_gettop(state);
    lua_pushvalue(state, LUA_GLOBALSINDEX);
    replace(state, anchor, "pcall", &callAndCatch);
    replace(state, anchor, "xpcall", &callWithHandler);
    replace(state, anchor, "load", &callCatcher);
    pushField(state, LUA_COLIBNAME);
    if (lua_istable(state, -1)) {
        replace(state, anchor, "resume", &callCatcher);
        replace(state, anchor, "create", &create);
        replace(state, anchor, "wrap", &wrap);
    }
    lua_settop(state, anchor);
}

}  // namespace nxLC::impl
