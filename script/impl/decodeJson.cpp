// Pushing what a JSON text holds.
#include "script/impl/decodeJson.h"

#include <exception>

#include "foundation/nxLC/ReflectionData.h"
#include "foundation/nxLC/protect.h"
#include "foundation/nxRFL/Database.h"
#include "foundation/ur/Account.h"
#include "plst/JsonTape.h"
#include "script/impl/makeRoom.h"

namespace nxSupport::impl {

using nxPLST::JsonTape;

namespace {

/// Pushes the values of a tape, one after the other. Runs in the body of a `protect`.
class TapePusher {
public:
    TapePusher(lua_State* state, JsonTape const& tape) noexcept
        : state_(state), tape_(tape), next_(tape.entries().data()) {}

    void pushNext() {
        JsonTape::Entry const& entry = *next_++;
        switch (entry.kind) {
            case JsonTape::Kind::null: return lua_pushnil(state_);
            case JsonTape::Kind::boolean: return lua_pushboolean(state_, entry.isTrue);
            case JsonTape::Kind::number: return lua_pushnumber(state_, entry.number);
            case JsonTape::Kind::text: return pushText(entry);
            case JsonTape::Kind::array: return pushArray(entry);
            case JsonTape::Kind::dictionary: return pushDictionary(entry);
        }
    }

private:
    void pushText(JsonTape::Entry const& entry) {
        std::string_view const text = tape_.textOf(entry);
        lua_pushlstring(state_, text.data(), text.size());
    }
    /// Nulls leave holes.
    void pushArray(JsonTape::Entry const& entry) {
        makeRoom(state_);
        int const count = static_cast<int>(entry.size);
        lua_createtable(state_, count, 0);
        for (int i = 1; i <= count; ++i) {
            pushNext();
            lua_rawseti(state_, -2, i);
        }
    }
    /// The last of equal keys stays, and none whose value is null.
    void pushDictionary(JsonTape::Entry const& entry) {
        makeRoom(state_);
        int const count = static_cast<int>(entry.size);
        lua_createtable(state_, 0, count);
        for (int i = 0; i < count; ++i) {
            pushText(*next_++);
            pushNext();
            lua_rawset(state_, -3);
        }
    }

    lua_State* state_;
    JsonTape const& tape_;
    JsonTape::Entry const* next_;
};

constexpr int budgetSpent = -1;

/// The number of results: the value, or none; or `budgetSpent`.
int decode(lua_State* state, char const* text) {
    try {
        auto* const reflection = nxLC::ReflectionData::find(state);
        JsonTape tape(reflection ? reflection->getDB()->account() : nullptr);
        if (!tape.read(text)) return 0;
        nxLC::protect(state, 0, 1, [&tape](lua_State* inner) {
            TapePusher(inner, tape).pushNext();
            return 1;
        });
        return 1;
    } catch (ur::BudgetSpent const&) {
        return budgetSpent;
    } catch (std::exception const&) {
        return 0;
    }
}

}  // namespace

int decodeJson(lua_State* state) {
    if (lua_gettop(state) != 1 || !lua_isstring(state, 1)) return 0;
    // Up to the first NUL. Of a number this makes a text, and may raise: nothing has been made yet.
    int const results = decode(state, lua_tostring(state, 1));
    return results == budgetSpent ? luaL_error(state, "%s", ur::BudgetSpent().what()) : results;
}

}  // namespace nxSupport::impl
