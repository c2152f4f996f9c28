// Opens Lua's libraries; a sandbox gets only part of them.
#include "foundation/nxLC/impl/libraries.h"

#include <initializer_list>

#include "foundation/nxLC/impl/boundedLibraries.h"

namespace nxLC::impl {

namespace {

void open(lua_State* state, char const* name, lua_CFunction opener) {
    lua_pushcfunction(state, opener);
    lua_pushstring(state, name);
    lua_call(state, 1, 0);
}

/// Removes fields from the global table `table`, or from the globals.
void remove(lua_State* state, char const* table, std::initializer_list<char const*> names) {
    lua_getglobal(state, table);
    for (char const* const name : names) {
        lua_pushnil(state);
        lua_setfield(state, -2, name);
    }
    lua_pop(state, 1);
}

/// Its address is the registry key.
char const proxiesKey = 0;

void pushProxies(lua_State* state) {
    lua_pushlightuserdata(state, const_cast<char*>(&proxiesKey));
    lua_rawget(state, LUA_REGISTRYINDEX);
}

/// Records the metatable of a new proxy, where scripts put finalizers.
int noteProxy(lua_State* state) {
    lua_settop(state, 1);
    lua_pushvalue(state, lua_upvalueindex(1));  // Lua calls it, since it has an upvalue of its own
    lua_insert(state, 1);
    lua_call(state, 1, 1);
    if (!lua_getmetatable(state, -1)) return 1;
    pushProxies(state);
    lua_insert(state, -2);
    lua_pushboolean(state, 1);
    lua_rawset(state, -3);
    lua_pop(state, 1);
    return 1;
}

/// Creates the table whose keys are the metatables of proxies, held weakly.
void keepProxies(lua_State* state) {
    lua_pushlightuserdata(state, const_cast<char*>(&proxiesKey));
    lua_newtable(state);
    lua_newtable(state);
    lua_pushliteral(state, "k");
    lua_setfield(state, -2, "__mode");
    lua_setmetatable(state, -2);
    lua_rawset(state, LUA_REGISTRYINDEX);
}

}  // namespace

void openLibraries(lua_State* state, Library library) {
    if (library == Library::everything) {
        luaL_openlibs(state);
        keepProxies(state);
        wrap(state, "_G", {"newproxy"}, &noteProxy);
    } else {
        open(state, "", &luaopen_base);
        open(state, LUA_TABLIBNAME, &luaopen_table);
        open(state, LUA_STRLIBNAME, &luaopen_string);
        open(state, LUA_MATHLIBNAME, &luaopen_math);
        open(state, LUA_OSLIBNAME, &luaopen_os);
        // Compiled code can break the interpreter, and finalizers run where no instructions are counted.
        remove(state, "_G", {"dofile", "loadfile", "load", "loadstring", "newproxy"});
        remove(state, LUA_OSLIBNAME, {"execute", "exit", "getenv", "remove", "rename", "setlocale", "tmpname"});
        remove(state, LUA_STRLIBNAME, {"dump", "gfind"});
    }
    boundLibraries(state, library);
}

void dropFinalizers(lua_State* state) noexcept {
    int const top = lua_gettop(state);
    pushProxies(state);
    if (lua_istable(state, -1)) {
        for (lua_pushnil(state); lua_next(state, top + 1); lua_pop(state, 1)) {
            lua_pushliteral(state, "__gc");
            lua_rawget(state, -3);
            bool const hasFinalizer = !lua_isnil(state, -1);  // removing a missing field would need memory
            lua_pop(state, 1);
            if (!hasFinalizer) continue;
            lua_pushliteral(state, "__gc");
            lua_pushnil(state);
            lua_rawset(state, -4);
        }
    }
    lua_settop(state, top);
}

}  // namespace nxLC::impl
