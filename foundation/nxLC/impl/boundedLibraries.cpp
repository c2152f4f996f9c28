// Wraps functions of Lua's libraries that can take long in one call.
#include "foundation/nxLC/impl/boundedLibraries.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string_view>

#include "foundation/nxLC/impl/Binding.h"

namespace nxLC::impl {

namespace {

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

/// The bytes of a text that is the first argument.
std::size_t textSize(lua_State* state) { return lua_type(state, 1) == LUA_TSTRING ? lua_objlen(state, 1) : 0; }

/// Refuses patterns so long that matching them might overflow the native stack. Counts one pass over the text. The
/// second upvalue is true if the fourth argument can make the pattern plain text.
int matchBounded(lua_State* state) {
    bool const isPlain = lua_toboolean(state, lua_upvalueindex(2)) && lua_toboolean(state, 4);
    std::size_t const size = textSize(state);
    if (size >= shortText) spend(state, isPlain ? size / Meter::bytesPerInstruction : size);
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
    spend(state, static_cast<std::uint64_t>(last - first + 1));
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

/// Compares as Lua does, and counts. The upvalue is the meter.
int lessCounted(lua_State* state) {
    auto& meter = *static_cast<Meter*>(lua_touserdata(state, lua_upvalueindex(1)));
    meter.spend(1);
    if (meter.mustStop()) return luaL_error(state, "%s", meter.reason());
    lua_pushboolean(state, lua_lessthan(state, 1, 2));
    return 1;
}

/// Makes each comparison count: for elements in some orders Lua compares each with nearly all others.
int sortCounted(lua_State* state) {
    Binding* const binding = Binding::find(state);
    if (binding && lua_gettop(state) >= 1 && lua_isnoneornil(state, 2)) {
        lua_settop(state, 1);
        lua_pushlightuserdata(state, &binding->meter);
        lua_pushcclosure(state, &lessCounted, 1);
    }
    return callOriginal(state);
}

/// Counts the entries of a table that is the first argument.
int entriesCounted(lua_State* state) {
    std::uint64_t count = 0;
    if (lua_type(state, 1) == LUA_TTABLE) {
        for (lua_pushnil(state); lua_next(state, 1); lua_pop(state, 1)) ++count;
    }
    spend(state, count);
    return callOriginal(state);
}

/// Counts the elements that `concat` joins.
int concatCounted(lua_State* state) {
    double const first = luaL_optnumber(state, 3, 1);
    double const last = luaL_optnumber(state, 4, static_cast<double>(lua_objlen(state, 1)));
    if (last >= first && fits(first) && fits(last)) spend(state, static_cast<std::uint64_t>(last - first) + 1);
    return callOriginal(state);
}

/// Counts the digits of a long number.
int numberCounted(lua_State* state) {
    if (std::size_t const size = textSize(state); size >= shortText) spend(state, size);
    return callOriginal(state);
}

/// Counts what a collection goes through. The second upvalue is true for a sandbox, whose scripts do not set the
/// collector's pace: with some settings each allocation makes it run.
int collectCounted(lua_State* state) {
    std::string_view const option = luaL_optstring(state, 1, "collect");
    if (lua_toboolean(state, lua_upvalueindex(2)) && option.starts_with("set"))
        return luaL_error(state, "a sandbox does not set the collector's pace");
    std::uint64_t const bytes = static_cast<std::uint64_t>(lua_gc(state, LUA_GCCOUNT, 0)) * 1024;
    if (option == "collect" || option == "step") spend(state, bytes / Meter::bytesPerInstruction);
    return callOriginal(state);
}

}  // namespace

void wrap(lua_State* state, char const* table, std::initializer_list<char const*> names, lua_CFunction wrapper,
          bool flag) {
    lua_getglobal(state, table);
    for (char const* const name : names) {
        lua_getfield(state, -1, name);
        lua_pushboolean(state, flag);
        lua_pushcclosure(state, wrapper, 2);
        lua_setfield(state, -2, name);
    }
    lua_pop(state, 1);
}

void boundLibraries(lua_State* state, Library library) {
    wrap(state, "_G", {"unpack"}, &unpackBounded);
    wrap(state, "_G", {"collectgarbage"}, &collectCounted, library == Library::sandboxed);
    wrap(state, LUA_STRLIBNAME, {"rep"}, &repeatBounded);
    wrap(state, LUA_TABLIBNAME, {"insert"}, &insertBounded);
    wrap(state, LUA_TABLIBNAME, {"remove"}, &removeBounded);
    if (library == Library::everything) return;
    wrap(state, LUA_STRLIBNAME, {"find"}, &matchBounded, true);
    wrap(state, LUA_STRLIBNAME, {"match", "gmatch", "gsub"}, &matchBounded);
    wrap(state, LUA_TABLIBNAME, {"sort"}, &sortCounted);
    wrap(state, LUA_TABLIBNAME, {"concat"}, &concatCounted);
    wrap(state, LUA_TABLIBNAME, {"foreach", "foreachi", "maxn"}, &entriesCounted);
    wrap(state, "_G", {"tonumber"}, &numberCounted);
}

}  // namespace nxLC::impl
