// Decodes any bytes as a script does. Acceptance and values must agree with the other JSON reader.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <lua.hpp>
#include <string>

#include "fuzz/require.h"
#include "plst/JsonReport.h"
#include "plst/casts.h"
#include "script/luaFunctions.h"

namespace {

using nxPLST::Item;
using urString::CString;

/// Deeper texts do not fit Lua's stack.
constexpr std::ptrdiff_t deepest = 1000;

lua_State* openState() {
    lua_State* const state = luaL_newstate();
    require(state, "a state opens");
    lua_newtable(state);
    lua_setglobal(state, "nx");
    nxSupport::InitializeLuaMsg message(nxSupport::InitializeLuaMsg::Application, state);
    nxSupport::registerLuaFunctions(message);
    lua_getglobal(state, "nx");
    lua_getfield(state, 1, "decodeJSON2");
    lua_remove(state, 1);
    return state;
}

std::string_view textAt(lua_State* state, int index) {
    std::size_t size = 0;
    char const* const text = lua_tolstring(state, index, &size);
    return {text, size};
}

bool same(lua_State* state, Item const& item);

bool sameElements(lua_State* state, nxPLST::Array const& array) {
    auto const count = static_cast<std::size_t>(array.size());
    if (lua_objlen(state, -1) != count) return false;
    for (int i = 0; i < array.size(); ++i) {
        lua_rawgeti(state, -1, i + 1);
        if (!same(state, *array.objectAt(i))) return false;
        lua_pop(state, 1);
    }
    return true;
}

bool sameMembers(lua_State* state, nxPLST::Dictionary const& dictionary) {
    int left = dictionary.size();
    for (lua_pushnil(state); lua_next(state, -2) != 0; lua_pop(state, 1), --left) {
        auto const value = dictionary.find(CString(textAt(state, -2)));
        if (!value || !same(state, *value)) return false;
    }
    return left == 0;
}

/// Whether the value on top of the stack equals the item.
bool same(lua_State* state, Item const& item) {
    require(lua_checkstack(state, 3) != 0, "there is room for a walk");
    switch (item.type()) {
        case nxPLST::BoolType:
            return lua_isboolean(state, -1) &&
                   (lua_toboolean(state, -1) != 0) == static_cast<nxPLST::Bool const&>(item).value();
        case nxPLST::DoubleType:
            return lua_type(state, -1) == LUA_TNUMBER &&
                   lua_tonumber(state, -1) == static_cast<nxPLST::Double const&>(item).value();
        case nxPLST::StringType:
            return lua_type(state, -1) == LUA_TSTRING &&
                   textAt(state, -1) == static_cast<nxPLST::String const&>(item).value();
        case nxPLST::ArrayType:
            return lua_istable(state, -1) && sameElements(state, static_cast<nxPLST::Array const&>(item));
        case nxPLST::DictionaryType:
            return lua_istable(state, -1) && sameMembers(state, static_cast<nxPLST::Dictionary const&>(item));
    }
    return false;
}

/// A null becomes a hole in a table, but is omitted from a tree.
bool hasNulls(nxPLST::JsonReport const& report) {
    if (report.lossCount > report.losses.size()) return true;
    for (auto const& loss : report.losses) {
        if (loss.kind == nxPLST::JsonLoss::Kind::nullValue) return true;
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    static lua_State* const state = openState();
    auto const* const given = reinterpret_cast<char const*>(bytes);
    CString const text(given, strnlen(given, size));  // a script's text ends at its first NUL
    ur::Reference<Item> item;
    nxPLST::JsonReport report;
    bool const accepted = nxPLST::convertFromJSON(item, text, report);

    lua_pushvalue(state, 1);
    lua_pushlstring(state, given, size);
    require(lua_pcall(state, 1, LUA_MULTRET, 0) == 0, "no error is raised");
    int const results = lua_gettop(state) - 1;
    require(results <= 1 && (results == 0 || accepted), "only what is JSON gives a value");
    require(results == 1 || !accepted || std::ranges::count(text, '[') + std::ranges::count(text, '{') > deepest,
            "what is JSON gives a value");
    if (results == 1 && !hasNulls(report)) require(item && same(state, *item), "both readers make the same values");
    lua_settop(state, 1);
    return 0;
}
