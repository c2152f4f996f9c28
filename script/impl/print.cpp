// Converts any values to text and prints them.
#include "script/impl/print.h"

#include <exception>

#include "foundation/nxLC/protect.h"
#include "foundation/urOS/AppOutput.h"
#include "foundation/urString/CString.h"

namespace nxSupport::impl {

using urString::CString;

namespace {

/// Pushes the text of the value at index 1, as Lua's tostring returns it. Raises.
int pushText(lua_State* state) {
    if (!luaL_callmeta(state, 1, "__tostring") || !lua_isstring(state, -1))
        lua_pushfstring(state, "%s: %p", luaL_typename(state, 1), lua_topointer(state, 1));
    lua_tolstring(state, -1, nullptr);  // converts a number to text here, where this may raise
    return 1;
}

void appendText(lua_State* state, int index, CString& text) {
    switch (lua_type(state, index)) {
        case LUA_TNIL: text.append("nil"); return;
        case LUA_TBOOLEAN: text.append(lua_toboolean(state, index) ? "true" : "false"); return;
        case LUA_TNUMBER: text.append(CString::format(LUA_NUMBER_FMT, lua_tonumber(state, index))); return;
        default: break;
    }
    std::size_t size = 0;
    if (lua_type(state, index) == LUA_TSTRING) {
        char const* const bytes = lua_tolstring(state, index, &size);
        text.append(bytes, size);
        return;
    }
    try {
        lua_pushvalue(state, index);
        nxLC::protect(state, 1, 1, pushText);
        char const* const bytes = lua_tolstring(state, -1, &size);
        text.append(bytes, size);
        lua_pop(state, 1);
    } catch (nxRFL::Exception const&) {
        text.append(CString::format("%s: %p", luaL_typename(state, index), lua_topointer(state, index)));
    }
}

}  // namespace

int print(lua_State* state) {
    return nxLC::guard(state, [state] {
        CString text;
        int const count = lua_gettop(state);
        for (int i = 1; i <= count; ++i) {
            if (i > 1) text.append('\t');
            appendText(state, i, text);
        }
        urOS::AppOutputStream& output = urOS::AppOutput::getInstance();
        output.write(text.append('\n'));
        static_cast<void>(output.flush());
        return 0;
    });
}

}  // namespace nxSupport::impl
