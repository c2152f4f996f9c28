// Builds Lua values step by step, valid and invalid ones. Each must become an item or null without an error, the stack
// must stay unchanged, and an item's own table must become an equal item.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <lua.hpp>
#include <string_view>

#include "fuzz/require.h"
#include "plst/json.h"
#include "script/luaItems.h"

namespace {

/// Returns the bytes one after the other; zeros after the last one.
class Draw {
public:
    Draw(std::uint8_t const* bytes, std::size_t size) noexcept : bytes_(bytes), left_(size) {}

    [[nodiscard]] bool empty() const noexcept { return left_ == 0; }
    std::uint8_t byte() noexcept {
        if (empty()) return 0;
        --left_;
        return *bytes_++;
    }
    std::string_view text() noexcept {
        std::size_t const size = std::min<std::size_t>(byte() % 32, left_);
        std::string_view const text(reinterpret_cast<char const*>(bytes_), size);
        bytes_ += size;
        left_ -= size;
        return text;
    }

private:
    std::uint8_t const* bytes_;
    std::size_t left_;
};

int raise(lua_State* state) { return luaL_error(state, "asked"); }

void pushText(lua_State* state, std::string_view text) { lua_pushlstring(state, text.data(), text.size()); }

/// Pushes a value of any kind, or one that is already on the stack.
void pushValue(lua_State* state, Draw& draw) {
    switch (draw.byte() % 10) {
        case 0: return lua_pushboolean(state, draw.byte() & 1);
        case 1: return lua_pushnumber(state, draw.byte() - 100);
        case 2: return lua_pushnumber(state, 1e300 * draw.byte() * draw.byte() * 1e10);  // or an infinity
        case 3: return lua_pushnil(state);
        case 4: return lua_pushcfunction(state, &raise);
        case 5: return lua_pushvalue(state, 1 + draw.byte() % lua_gettop(state));
        case 6: lua_newuserdata(state, 1); return;
        case 7: return pushText(state, draw.text());
        default: return lua_newtable(state);
    }
}

/// Combines the value on top with the table below it. The caller handles Lua errors.
void combine(lua_State* state, Draw& draw) {
    switch (draw.byte() % 5) {
        case 0:
        case 1: return lua_rawseti(state, -2, static_cast<int>(lua_objlen(state, -2)) + 1);
        case 2:
            pushText(state, draw.text());
            lua_insert(state, -2);
            return lua_rawset(state, -3);
        case 3:
            pushValue(state, draw);  // a key of any kind
            lua_insert(state, -2);
            return lua_rawset(state, -3);
        default:
            lua_newtable(state);
            lua_pushcfunction(state, &raise);
            lua_setfield(state, -2, "__index");
            lua_setmetatable(state, -3);
            return lua_pop(state, 1);
    }
}

/// Runs protected, because a nil key raises.
int build(lua_State* state) {
    Draw& draw = *static_cast<Draw*>(lua_touserdata(state, 1));
    lua_newtable(state);
    lua_replace(state, 1);
    while (!draw.empty()) {
        if (lua_gettop(state) < 40 && lua_checkstack(state, 8) != 0) pushValue(state, draw);
        while (lua_gettop(state) > 1 && lua_istable(state, -2) && draw.byte() % 2 == 0) combine(state, draw);
    }
    return lua_gettop(state);
}

void checkValue(lua_State* state, int index) {
    int const top = lua_gettop(state);
    auto const item = nxSupport::popPListItem(state, index);
    require(lua_gettop(state) == top, "the value stays, and nothing else comes");
    nxSupport::pushPListItem(state, item);
    if (lua_gettop(state) == top) return require(!item, "an item has a table");
    require(item && lua_gettop(state) == top + 1, "one value comes");
    auto const again = nxSupport::popPListItem(state, top + 1);
    lua_settop(state, top);
    require(again && again->congruent(*item), "its table gives an item of the same structure");
    require(nxPLST::asJSON(again) == nxPLST::asJSON(item), "with the same values");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    static lua_State* const state = luaL_newstate();
    Draw draw(bytes, size);
    lua_pushcfunction(state, &build);
    lua_pushlightuserdata(state, &draw);
    int const made = lua_pcall(state, 1, LUA_MULTRET, 0) == 0 ? lua_gettop(state) : 0;
    for (int index = 1; index <= made; ++index) checkValue(state, index);
    lua_settop(state, 0);
    return 0;
}
