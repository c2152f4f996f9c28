// Pushing what a JSON text holds, and writing one.
#include "script/impl/jsonFunctions.h"

#include <cmath>

#include "foundation/nxLC/ReflectionData.h"
#include "foundation/nxLC/protect.h"
#include "foundation/ur/Account.h"
#include "plst/JsonReport.h"
#include "plst/JsonTape.h"
#include "script/impl/itemFromLua.h"
#include "script/impl/makeRoom.h"
#include "script/luaItems.h"

namespace nxSupport::impl {

using nxLC::ReflectionData;
using nxPLST::JsonTape;
using urString::CString;

namespace {

/// The most spaces for each level that a script may ask for.
constexpr unsigned widestIndent = 100;

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

void spend(ReflectionData* data, std::size_t instructions) {
    if (data) data->spend(instructions);
}

/// Pushes the value of the tape. False, with nothing pushed, if it is nested too deeply or Lua has no memory.
bool pushValue(lua_State* state, JsonTape const& tape) {
    try {
        nxLC::protect(state, 0, 1, [&tape](lua_State* inner) {
            TapePusher(inner, tape).pushNext();
            return 1;
        });
        return true;
    } catch (nxRFL::Exception const&) {
        return false;
    }
}

/// Pushes the value of the text. False, with nothing pushed and the reason in `why`, if it has none. Throws if the
/// script must end or the memory is spent.
bool decode(lua_State* state, std::string_view text, CString& why) {
    auto* const data = ReflectionData::find(state);
    spend(data, text.size());
    JsonTape tape(accountOf(state));
    nxPLST::JsonReport report;
    if (!tape.read(text, report)) {
        why = CString::format("line %zu, column %zu: %s", report.location.line, report.location.column,
                              report.reason.c_str());
        return false;
    }
    spend(data, tape.entries().size());
    if (pushValue(state, tape)) return true;
    spend(data, 0);
    why = "the value is nested too deeply, or there is no memory";
    return false;
}

int pushBytes(lua_State* state, CString const& text) {
    nxLC::protect(state, 0, 1, [&text](lua_State* inner) {
        lua_pushlstring(inner, text.data(), text.size());
        return 1;
    });
    return 1;
}

/// Pushes nil and the reason.
int fail(lua_State* state, CString const& why) {
    lua_pushnil(state);
    return 1 + pushBytes(state, why);
}

int encode(lua_State* state, unsigned indent) {
    auto* const data = ReflectionData::find(state);
    ur::Charge charge(accountOf(state), 0);
    ur::Reference<nxPLST::Item const> item;
    try {
        item = itemFromLua(state, 1, charge);
    } catch (nxRFL::Exception const& error) {
        spend(data, 0);
        return fail(state, "the value has no JSON form: it " + error.message());
    }
    if (!item) return fail(state, "the value has no JSON form: it is nil");
    CString text;
    if (!nxPLST::writeJson(text, item, {.indent = indent, .charge = &charge}))
        return fail(state, "the value has no JSON form: it holds a number that is not finite");
    spend(data, text.size());
    return pushBytes(state, text);
}

}  // namespace

int decodeJson2(lua_State* state) {
    if (lua_gettop(state) != 1 || !lua_isstring(state, 1)) return 0;
    // Up to the first NUL. May raise, since it converts a number.
    char const* const text = lua_tostring(state, 1);
    return nxLC::guard(state, [=] {
        CString why;
        return decode(state, text, why) ? 1 : 0;
    });
}

int decodeJson(lua_State* state) {
    std::size_t size = 0;
    char const* const text = luaL_checklstring(state, 1, &size);
    return nxLC::guard(state, [=] {
        CString why;
        return decode(state, {text, size}, why) ? 1 : fail(state, why);
    });
}

int encodeJson(lua_State* state) {
    luaL_checkany(state, 1);
    lua_Number const indent = luaL_optnumber(state, 2, 0);
    return nxLC::guard(state, [=] {
        bool const fits = indent >= 0 && indent <= widestIndent && indent == std::trunc(indent);
        if (!fits)
            return fail(state, CString::format("the spaces of a level are a whole number from 0 to %u", widestIndent));
        return encode(state, static_cast<unsigned>(indent));
    });
}

}  // namespace nxSupport::impl
