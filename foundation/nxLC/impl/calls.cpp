// From Lua to native functions and back.
#include "foundation/nxLC/impl/calls.h"

#include <algorithm>
#include <cstring>

#include "foundation/nxLC/impl/objects.h"
#include "foundation/nxRFL/IteratorState.h"
#include "foundation/nxRFL/Reader.h"

namespace nxLC::impl {

using nxRFL::Function;
using nxRFL::IteratorState;
using nxRFL::Member;

namespace {

int failShortly(ShortText& text, char const* message) noexcept {
    text.size = std::min(std::strlen(message), ShortText::capacity);
    std::memcpy(text.bytes, message, text.size);
    return shortErrorOutcome;
}

/// Pushes the message behind the place of the call, in which the native function failed.
int fail(lua_State* state, ShortText& text, char const* message) noexcept {
    if (std::strlen(message) <= ShortText::capacity) return failShortly(text, message);
    try {
        protect(state, 0, 1, [message](lua_State* inner) {
            luaL_where(inner, 2);  // behind this function and the one that failed
            lua_pushstring(inner, message);
            lua_concat(inner, 2);
            return 1;
        });
        return raisedOutcome;
    } catch (...) {
        return failShortly(text, "not enough memory");
    }
}

/// Runs the native part of a function that Lua called; what it throws becomes the error.
template <class Native>
int runNative(lua_State* state, ShortText& text, Native const& native) noexcept {
    Binding* const binding = bindingOf(state);
    if (!binding) return failShortly(text, "the state is closing");
    try {
        NativeCall const call(*binding, state);
        return native(call);
    } catch (std::exception const& error) {
        return fail(state, text, error.what());
    } catch (...) {
        return failShortly(text, "unknown exception");
    }
}

Member const& memberOf(lua_State* state) noexcept {
    return *static_cast<Member const*>(lua_touserdata(state, lua_upvalueindex(2)));
}

/// The value at `index` as the state of an iterator, or null.
IteratorState* toIteratorState(lua_State* state, int index) noexcept {
    Box const* const box = toBox(state, index);
    void* const walk =
        box && box->pointer ? box->objectClass->cast(box->pointer, ur::TypeInfo::of<IteratorState>()) : nullptr;
    return static_cast<IteratorState*>(walk);
}

/// The step of a `for` loop. Upvalues: the anchor, the iterator, its state, and the object, which is kept alive.
int stepIteration(lua_State* state) {
    ShortText text;
    lua_settop(state, 0);
    lua_pushvalue(state, lua_upvalueindex(3));
    Function const& value = *memberOf(state).second;
    auto const step = [&](NativeCall const& call) {
        IteratorState* const walk = toIteratorState(state, 1);
        if (!walk || !walk->valid()) {
            lua_pushnil(state);
            return 1;
        }
        readArguments(call.binding(), state, value, call.arguments());
        value.call(call.arguments(), call.results());
        walk->advance();
        bool const isSeveral = !value.signature().empty() && value.signature().front().startsWith("object[");
        return isSeveral ? pushElements(call.binding(), state, call.results())
                         : pushResults(call.binding(), state, call.results(), text);
    };
    return complete(state, runNative(state, text, step), text);
}

/// Asks the hook about the assignment of which the arguments are on the stack.
void askAssignmentHook(lua_State* state, Binding& binding) {
    Binding::pushKept(state, binding.assignmentHook);
    for (int i = 1; i <= 3; ++i) lua_pushvalue(state, i);
    binding.asksAssignmentHook = false;
    int const status = lua_pcall(state, 3, 0, 0);
    binding.asksAssignmentHook = true;
    if (status != 0) lua_error(state);
}

/// What the table in the second upvalue has under the key at index 2: the address of a property, or null.
Member const* findProperty(lua_State* state) noexcept {
    lua_pushvalue(state, 2);
    lua_rawget(state, lua_upvalueindex(2));
    return lua_islightuserdata(state, -1) ? static_cast<Member const*>(lua_touserdata(state, -1)) : nullptr;
}

char const* classNameOf(lua_State* state, int index) noexcept {
    Box const* const box = toBox(state, index);
    return box ? box->objectClass->name().c_str() : luaL_typename(state, index);
}

}  // namespace

int callFunction(lua_State* state, Function const& function, ShortText& text) noexcept {
    return runNative(state, text, [&](NativeCall const& call) {
        readArguments(call.binding(), state, function, call.arguments());
        function.call(call.arguments(), call.results());
        return pushResults(call.binding(), state, call.results(), text);
    });
}

int callMember(lua_State* state) {
    ShortText text;
    return complete(state, callFunction(state, *memberOf(state).function, text), text);
}

int beginIteration(lua_State* state) {
    ShortText text;
    int const outcome = callFunction(state, *memberOf(state).function, text);
    if (outcome < 0) return complete(state, outcome, text);
    if (outcome != 1 || !toIteratorState(state, -1)) return luaL_error(state, "nothing to walk over");
    int const walk = lua_gettop(state);
    lua_pushvalue(state, lua_upvalueindex(1));
    lua_pushvalue(state, lua_upvalueindex(2));
    lua_pushvalue(state, walk);
    lua_pushvalue(state, 1);
    lua_pushcclosure(state, &stepIteration, 4);
    return 1;
}

int indexObject(lua_State* state) {
    Member const* const property = findProperty(state);
    if (!property) return 1;
    ShortText text;
    lua_settop(state, 1);
    return complete(state, callFunction(state, *property->function, text), text);
}

int assignProperty(lua_State* state) {
    Member const* const property = findProperty(state);
    if (!property || !property->second) {
        char const* const name = lua_type(state, 2) == LUA_TSTRING ? lua_tostring(state, 2) : luaL_typename(state, 2);
        return luaL_error(state, property ? "%s.%s is read-only" : "%s has no property %s", classNameOf(state, 1),
                          name);
    }
    lua_settop(state, 3);
    Binding* const binding = bindingOf(state);
    if (binding && binding->asksAssignmentHook) askAssignmentHook(state, *binding);
    lua_remove(state, 2);
    ShortText text;
    return complete(state, callFunction(state, *property->second, text), text);
}

}  // namespace nxLC::impl
