// What a sandbox keeps of Lua's libraries.
#include "foundation/nxLC/impl/libraries.h"

#include <initializer_list>

namespace nxLC::impl {

namespace {

void open(lua_State* state, char const* name, lua_CFunction opener) {
    lua_pushcfunction(state, opener);
    lua_pushstring(state, name);
    lua_call(state, 1, 0);
}

/// Takes fields out of the table that is the global `table`, or out of the globals.
void remove(lua_State* state, char const* table, std::initializer_list<char const*> names) {
    lua_getglobal(state, table);
    for (char const* const name : names) {
        lua_pushnil(state);
        lua_setfield(state, -2, name);
    }
    lua_pop(state, 1);
}

constexpr std::size_t longestPattern = 10000;

/// Passes on to the original function, the first upvalue, unless the pattern is so long that matching it might need
/// more of the native stack than there is. The second upvalue tells whether the fourth argument can make it plain text.
int matchBounded(lua_State* state) {
    bool const isPlain = lua_toboolean(state, lua_upvalueindex(2)) && lua_toboolean(state, 4);
    if (lua_type(state, 2) == LUA_TSTRING && lua_objlen(state, 2) > longestPattern && !isPlain)
        return luaL_error(state, "the pattern is too long");
    lua_pushvalue(state, lua_upvalueindex(1));
    lua_insert(state, 1);
    lua_call(state, lua_gettop(state) - 1, LUA_MULTRET);
    return lua_gettop(state);
}

void boundPatterns(lua_State* state) {
    lua_getglobal(state, LUA_STRLIBNAME);
    for (char const* const name : {"find", "match", "gmatch", "gsub"}) {
        lua_getfield(state, -1, name);
        lua_pushboolean(state, name[0] == 'f');
        lua_pushcclosure(state, &matchBounded, 2);
        lua_setfield(state, -2, name);
    }
    lua_pop(state, 1);
}

}  // namespace

void openLibraries(lua_State* state, Library library) {
    if (library == Library::everything) return luaL_openlibs(state);
    open(state, "", &luaopen_base);
    open(state, LUA_TABLIBNAME, &luaopen_table);
    open(state, LUA_STRLIBNAME, &luaopen_string);
    open(state, LUA_MATHLIBNAME, &luaopen_math);
    open(state, LUA_OSLIBNAME, &luaopen_os);
    // Compiled code can break the machine, and finalizers run where no instructions are counted.
    remove(state, "_G", {"dofile", "loadfile", "load", "loadstring", "newproxy"});
    remove(state, LUA_OSLIBNAME, {"execute", "exit", "getenv", "remove", "rename", "setlocale", "tmpname"});
    remove(state, LUA_STRLIBNAME, {"dump", "gfind"});
    boundPatterns(state);
}

}  // namespace nxLC::impl
