// Opens Lua's libraries; a sandbox gets only part of them.
#include "foundation/nxLC/impl/libraries.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "foundation/nxLC/impl/Binding.h"

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

/// Calls the function that is the first upvalue, with the arguments of the running function.
int callOriginal(lua_State* state) { return lua_tocfunction(state, lua_upvalueindex(1))(state); }

/// Counts the work of a library function as instructions, before it begins. Raises if the script must end.
void spend(lua_State* state, std::uint64_t instructions) {
    Binding* const binding = Binding::find(state);
    if (!binding) return;
    binding->meter.spend(instructions);
    if (binding->meter.mustStop()) luaL_error(state, "%s", binding->meter.reason());
}

constexpr std::size_t longestPattern = 10000;
constexpr std::size_t shortText = 1024;  ///< shorter ones are not counted

/// Refuses patterns so long that matching them might overflow the native stack. Counts one pass over the text. The
/// second upvalue is true if the fourth argument can make the pattern plain text.
int matchBounded(lua_State* state) {
    std::size_t const size = lua_type(state, 1) == LUA_TSTRING ? lua_objlen(state, 1) : 0;
    if (size >= shortText) spend(state, size / Meter::bytesPerInstruction);
    bool const isPlain = lua_toboolean(state, lua_upvalueindex(2)) && lua_toboolean(state, 4);
    if (lua_type(state, 2) == LUA_TSTRING && lua_objlen(state, 2) > longestPattern && !isPlain)
        return luaL_error(state, "the pattern is too long");
    return callOriginal(state);
}

/// Whether Lua's own conversion to `int` keeps the number.
bool fits(double number) { return number > INT_MIN && number < INT_MAX; }

constexpr double mostUnpacked = 1e6;

/// Refuses ranges whose ends or length no `int` can hold: Lua's own check overflows. The original function refuses
/// ranges that do not fit on its stack.
int unpackBounded(lua_State* state) {
    double const first = luaL_optnumber(state, 2, 1);
    double const last = luaL_optnumber(state, 3, static_cast<double>(lua_objlen(state, 1)));
    if (last < first - 1) return 0;
    if (!(fits(first) && fits(last) && last - first < mostUnpacked))
        return luaL_error(state, "too many results to unpack");
    return callOriginal(state);
}

constexpr double longestRepeated = 1 << 28;

/// Refuses at once repetitions that would take long. An empty text counts as one byte.
int repeatBounded(lua_State* state) {
    double const size = static_cast<double>(std::max<std::size_t>(lua_objlen(state, 1), 1));
    if (lua_isnumber(state, 2) && !(size * lua_tonumber(state, 2) <= longestRepeated))
        return luaL_error(state, "the repeated string is too long");
    return callOriginal(state);
}

constexpr double mostMoved = 1 << 24;

/// For `insert` and `remove`, which move all elements from the position in the second argument on. A table may claim a
/// length far beyond its content. Each move counts as an instruction.
int moveBounded(lua_State* state) {
    if (lua_type(state, 1) != LUA_TTABLE || !lua_isnumber(state, 2)) return callOriginal(state);
    double const position = lua_tonumber(state, 2);
    if (!(position >= 0 && fits(position))) return luaL_error(state, "the position is out of bounds");
    double const moved = static_cast<double>(lua_objlen(state, 1)) - position;
    if (moved > mostMoved) return luaL_error(state, "too many elements to move");
    if (moved > 0) spend(state, static_cast<std::uint64_t>(moved));
    return callOriginal(state);
}

/// Positions below the first move nothing.
int removeBounded(lua_State* state) {
    double const position = lua_tonumber(state, 2);
    return fits(position) && position < 1 ? callOriginal(state) : moveBounded(state);
}

/// `insert` with two arguments appends the second, which may be a number.
int insertBounded(lua_State* state) { return lua_gettop(state) == 3 ? moveBounded(state) : callOriginal(state); }

/// Counts the comparisons of a table whose elements need no script function for them.
int sortCounted(lua_State* state) {
    std::uint64_t const count = lua_type(state, 1) == LUA_TTABLE ? lua_objlen(state, 1) : 0;
    spend(state, count * static_cast<std::uint64_t>(std::bit_width(count)));
    return callOriginal(state);
}

/// Counts what a collection goes through.
int collectCounted(lua_State* state) {
    std::string_view const option = luaL_optstring(state, 1, "collect");
    std::uint64_t const bytes = static_cast<std::uint64_t>(lua_gc(state, LUA_GCCOUNT, 0)) * 1024;
    if (option == "collect" || option == "step") spend(state, bytes / Meter::bytesPerInstruction);
    return callOriginal(state);
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

/// Wraps functions of the global table `table` with `bounded`.
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
        keepProxies(state);
        bound(state, "_G", {"newproxy"}, &noteProxy);
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
        bound(state, LUA_STRLIBNAME, {"find", "match", "gmatch", "gsub"}, &matchBounded);
    }
    bound(state, "_G", {"unpack"}, &unpackBounded);
    bound(state, "_G", {"collectgarbage"}, &collectCounted);
    bound(state, LUA_STRLIBNAME, {"rep"}, &repeatBounded);
    bound(state, LUA_TABLIBNAME, {"sort"}, &sortCounted);
    bound(state, LUA_TABLIBNAME, {"insert"}, &insertBounded);
    bound(state, LUA_TABLIBNAME, {"remove"}, &removeBounded);
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
