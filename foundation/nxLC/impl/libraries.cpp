// What a sandbox keeps of Lua's libraries.
#include "foundation/nxLC/impl/libraries.h"

#include <algorithm>
#include <climits>
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

/// Calls the function that is the first upvalue in place of the running one, whose arguments it finds.
int callOriginal(lua_State* state) { return lua_tocfunction(state, lua_upvalueindex(1))(state); }

constexpr std::size_t longestPattern = 10000;

/// Refuses patterns so long that matching them might need more of the native stack than there is. The second upvalue
/// tells whether the fourth argument can make it plain text.
int matchBounded(lua_State* state) {
    bool const isPlain = lua_toboolean(state, lua_upvalueindex(2)) && lua_toboolean(state, 4);
    if (lua_type(state, 2) == LUA_TSTRING && lua_objlen(state, 2) > longestPattern && !isPlain)
        return luaL_error(state, "the pattern is too long");
    return callOriginal(state);
}

/// Refuses ranges whose length no whole number can hold: Lua's own check overflows. Longer ones than fit on its stack
/// it refuses itself.
int unpackBounded(lua_State* state) {
    double const first = luaL_optnumber(state, 2, 1);
    double const last = luaL_optnumber(state, 3, static_cast<double>(lua_objlen(state, 1)));
    constexpr double mostResults = 1e6;
    if (!(last - first < mostResults && first > INT_MIN && last < INT_MAX))
        return luaL_error(state, "too many results to unpack");
    return callOriginal(state);
}

constexpr double longestRepeated = 1 << 28;

/// Refuses at once what would take long. Nothing, repeated often, counts as one byte.
int repeatBounded(lua_State* state) {
    double const size = static_cast<double>(std::max<std::size_t>(lua_objlen(state, 1), 1));
    if (lua_isnumber(state, 2) && !(size * lua_tonumber(state, 2) <= longestRepeated))
        return luaL_error(state, "the repeated string is too long");
    return callOriginal(state);
}

/// Refuses positions from which Lua would move elements that are not there.
int insertBounded(lua_State* state) {
    bool const isPlaced = lua_gettop(state) == 3 && lua_isnumber(state, 2);
    if (isPlaced && !(lua_tonumber(state, 2) >= 0 && lua_tonumber(state, 2) <= INT_MAX))
        return luaL_error(state, "the position is out of bounds");
    return callOriginal(state);
}

/// Puts `bounded` in front of functions of the table that is the global `table`.
void bound(lua_State* state, char const* table, std::initializer_list<char const*> names, lua_CFunction bounded) {
    lua_getglobal(state, table);
    for (char const* const name : names) {
        lua_getfield(state, -1, name);
        lua_pushboolean(state, name[0] == 'f');
        lua_pushcclosure(state, bounded, 2);
        lua_setfield(state, -2, name);
    }
    lua_pop(state, 1);
}

}  // namespace

void openLibraries(lua_State* state, Library library) {
    if (library == Library::everything) {
        luaL_openlibs(state);
        return bound(state, "_G", {"unpack"}, &unpackBounded);
    }
    open(state, "", &luaopen_base);
    open(state, LUA_TABLIBNAME, &luaopen_table);
    open(state, LUA_STRLIBNAME, &luaopen_string);
    open(state, LUA_MATHLIBNAME, &luaopen_math);
    open(state, LUA_OSLIBNAME, &luaopen_os);
    // Compiled code can break the machine, and finalizers run where no instructions are counted.
    remove(state, "_G", {"dofile", "loadfile", "load", "loadstring", "newproxy"});
    remove(state, LUA_OSLIBNAME, {"execute", "exit", "getenv", "remove", "rename", "setlocale", "tmpname"});
    remove(state, LUA_STRLIBNAME, {"dump", "gfind"});
    bound(state, "_G", {"unpack"}, &unpackBounded);
    bound(state, LUA_STRLIBNAME, {"find", "match", "gmatch", "gsub"}, &matchBounded);
    bound(state, LUA_STRLIBNAME, {"rep"}, &repeatBounded);
    bound(state, LUA_TABLIBNAME, {"insert"}, &insertBounded);
}

}  // namespace nxLC::impl
