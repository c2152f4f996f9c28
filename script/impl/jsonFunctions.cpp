// Pushing what a JSON text holds, and writing one.
#include "script/impl/jsonFunctions.h"

#include <cstdio>
#include <exception>

#include "foundation/nxLC/ReflectionData.h"
#include "foundation/nxLC/protect.h"
#include "foundation/nxRFL/Database.h"
#include "foundation/ur/Account.h"
#include "plst/JsonReport.h"
#include "plst/JsonTape.h"
#include "script/impl/makeRoom.h"
#include "script/luaItems.h"

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
int decode(lua_State* state, std::string_view text) {
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

/// Why there is no value. In plain bytes, since errors of Lua pass by destructors.
struct Reason {
    char text[400] = "the value is nested too deeply, or there is no memory";
};

Reason reasonOf(std::string_view text) noexcept {
    Reason reason;
    try {
        nxPLST::JsonReport report;
        ur::Reference<nxPLST::Item> item;
        if (nxPLST::convertFromJSON(item, urString::CString(text), report)) return reason;
        std::snprintf(reason.text, sizeof reason.text, "line %zu, column %zu: %s", report.location.line,
                      report.location.column, report.reason.c_str());
    } catch (std::exception const&) {  // for want of memory
    }
    return reason;
}

int sayWhy(lua_State* state, char const* why) {
    lua_pushnil(state);
    lua_pushstring(state, why);
    return 2;
}

/// The text on the stack, or null; otherwise why there is none.
char const* encode(lua_State* state, unsigned indent) noexcept {
    try {
        auto const item = popPListItem(state, 1);
        if (!item)
            return "the value has no JSON form: it is nil or holds what is no boolean, number, string or plain table";
        urString::CString text;
        if (!nxPLST::writeJson(text, item, {.indent = indent}))
            return "the value has no JSON form: it holds a number that is not finite, or too much that is shared";
        nxLC::protect(state, 0, 1, [&text](lua_State* inner) {
            lua_pushlstring(inner, text.data(), text.size());
            return 1;
        });
        return nullptr;
    } catch (std::exception const&) {
        return "there is no memory for the text";
    }
}

}  // namespace

int decodeJson2(lua_State* state) {
    if (lua_gettop(state) != 1 || !lua_isstring(state, 1)) return 0;
    // Up to the first NUL. Of a number this makes a text, and may raise: nothing has been made yet.
    int const results = decode(state, lua_tostring(state, 1));
    return results == budgetSpent ? luaL_error(state, "%s", ur::BudgetSpent().what()) : results;
}

int decodeJson(lua_State* state) {
    std::size_t size = 0;
    char const* const text = luaL_checklstring(state, 1, &size);
    int const results = decode(state, {text, size});
    if (results == budgetSpent) return luaL_error(state, "%s", ur::BudgetSpent().what());
    return results > 0 ? results : sayWhy(state, reasonOf({text, size}).text);
}

int encodeJson(lua_State* state) {
    luaL_checkany(state, 1);
    auto const indent = luaL_optinteger(state, 2, 0);
    if (indent < 0) return luaL_argerror(state, 2, "the spaces of a level are 0 or more");
    char const* const why = encode(state, static_cast<unsigned>(indent));
    return why ? sayWhy(state, why) : 1;
}

}  // namespace nxSupport::impl
