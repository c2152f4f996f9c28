// Calls native functions from Lua and passes errors back.
#include "foundation/nxLC/impl/calls.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <new>

#include "foundation/nxLC/impl/errors.h"
#include "foundation/nxLC/impl/objects.h"
#include "foundation/nxRFL/IteratorState.h"
#include "foundation/nxRFL/Reader.h"
#include "foundation/urString/NearestName.h"

namespace nxLC::impl {

using nxRFL::Function;
using nxRFL::IteratorState;
using nxRFL::PlainResult;
using nxRFL::PlainValue;

namespace {

int failShortly(ShortText& text, char const* message) noexcept {
    text.size = std::min(std::strlen(message), ShortText::capacity);
    std::memcpy(text.bytes, message, text.size);
    return shortErrorOutcome;
}

/// Pushes the message, preceded by the place of the call in which the native function failed.
int fail(lua_State* state, ShortText& text, char const* message) noexcept {
    if (std::strlen(message) <= ShortText::capacity) return failShortly(text, message);
    try {
        protect(state, 0, 1, [message](lua_State* inner) {
            luaL_where(inner, 2);  // skip this function and the one that failed
            lua_pushstring(inner, message);
            lua_concat(inner, 2);
            return 1;
        });
        return raisedOutcome;
    } catch (...) {
        return failShortly(text, "not enough memory");
    }
}

/// Passes on the error of a script that the native function has called: it already names its place.
int passOn(Binding& binding, lua_State* state, ShortText& text, nxRFL::Exception const& error) noexcept {
    try {
        // A script may create a text of any size, which the account would not count here.
        if (error.message().size() <= mostTraceBytes) binding.passedOn = PassedOn{error, binding.depth};
        protect(state, 0, 1, [&error](lua_State* inner) {
            lua_pushlstring(inner, error.message().data(), error.message().size());
            return 1;
        });
        return raisedOutcome;
    } catch (...) {
        return failShortly(text, "not enough memory");
    }
}

/// Runs the native part of a function that Lua called; its exception becomes the error.
template <class Native>
[[gnu::always_inline]] inline int runNative(Binding* binding, lua_State* state, ShortText& text,
                                            Native const& native) noexcept {
    if (!binding) return failShortly(text, "the state is closing");
    if (binding->meter.mustStop()) return failShortly(text, binding->meter.reason());
    binding->meter.relieve(state);
    try {
        NativeCall const call(*binding, state);
        return native();
    } catch (nxRFL::Exception const& error) {
        return error.trace().empty() ? fail(state, text, error.what()) : passOn(*binding, state, text, error);
    } catch (std::exception const& error) {
        return fail(state, text, error.what());
    } catch (...) {
        return failShortly(text, "unknown exception");
    }
}

/// The positions of the arguments of a function that Lua called: `count` values from index 1 on, `step` apart.
struct Places {
    int count;
    int step;

    [[nodiscard]] int of(int argument) const noexcept { return 1 + argument * step; }
};

bool readPlainObject(Binding& binding, lua_State* state, int index, PlainValue& value) noexcept {
    Box const* const box = toBox(binding, state, index);
    if (!box || !box->pointer) return false;
    value.kind = PlainValue::Kind::object;
    value.pointer = box->pointer;
    value.objectClass = box->objectClass;
    return true;
}

/// False when the value is not plain. Never raises.
bool readPlain(Binding& binding, lua_State* state, int index, PlainValue& value) noexcept {
    int const type = lua_type(state, index);
    if (type == LUA_TNUMBER) {
        value.kind = PlainValue::Kind::number;
        value.number = lua_tonumber(state, index);
        return true;
    }
    switch (type) {
        case LUA_TNIL: value.kind = PlainValue::Kind::null; return true;
        case LUA_TBOOLEAN:
            value.kind = PlainValue::Kind::boolean;
            value.truth = lua_toboolean(state, index) != 0;
            return true;
        case LUA_TSTRING:
            value.kind = PlainValue::Kind::text;
            value.bytes = lua_tolstring(state, index, &value.size);
            binding.meter.spendBytes(value.size);
            return true;
        case LUA_TUSERDATA: return readPlainObject(binding, state, index, value);
        default: return false;
    }
}

/// The fast path. False, with nothing done, when an argument does not fit it.
inline bool callPlainly(Binding& binding, lua_State* state, Function const& function, Places places,
                        PlainResult& result) {
    std::array<PlainValue, 5> values;
    if (places.count > static_cast<int>(values.size())) return false;
    int read = 0;
    if (function.isMethod() && places.count > 0) {
        if (!readPlainObject(binding, state, 1, values[0])) return false;
        read = 1;
    }
    for (; read < places.count; ++read) {
        if (!readPlain(binding, state, places.of(read), values[read])) return false;
    }
    return function.callPlain({values.data(), static_cast<std::size_t>(places.count)}, result);
}

int pushResult(Binding& binding, lua_State* state, PlainResult const& result, ShortText& text) {
    switch (result.kind) {
        case PlainValue::Kind::number: lua_pushnumber(state, result.number); return 1;
        case PlainValue::Kind::boolean: lua_pushboolean(state, result.truth); return 1;
        case PlainValue::Kind::text: return pushText(binding, state, result.text, text);
        default: return 0;
    }
}

int callWithStacks(Binding& binding, lua_State* state, Function const& function, Places places, ShortText& text) {
    lua_settop(state, places.of(places.count) - places.step);
    if (places.step == 2) lua_remove(state, 2);
    UsedStacks const stacks(binding);
    readArguments(binding, state, function, stacks.arguments());
    function.call(stacks.arguments(), stacks.results());
    return pushResults(binding, state, stacks.results(), text);
}

/// Inlined, since its callers know the positions: reading a property takes a tenth less.
[[gnu::always_inline]] inline int callAt(Binding* binding, lua_State* state, Function const& function, Places places,
                                         ShortText& text) noexcept {
    return runNative(binding, state, text, [binding, state, &function, places, &text] {
        PlainResult result;
        if (function.takesPlainValues() && callPlainly(*binding, state, function, places, result))
            return pushResult(*binding, state, result, text);
        return callWithStacks(*binding, state, function, places, text);
    });
}

MemberCell const& cellOf(lua_State* state) noexcept {
    return *static_cast<MemberCell const*>(lua_touserdata(state, lua_upvalueindex(1)));
}

/// The iterator state at `index`, or null.
IteratorState* toIteratorState(lua_State* state, int index) noexcept {
    Box const* const box = toBox(state, index);
    void* const walk =
        box && box->pointer ? box->objectClass->cast(box->pointer, ur::TypeInfo::of<IteratorState>()) : nullptr;
    return static_cast<IteratorState*>(walk);
}

/// The step of a `for` loop. Upvalues: the iterator's cell, its state, and the object, which this keeps alive.
int stepIteration(lua_State* state) {
    ShortText text;
    lua_settop(state, 0);
    lua_pushvalue(state, lua_upvalueindex(2));
    MemberCell const& cell = cellOf(state);
    Function const& value = *cell.member->second;
    Binding* const binding = cell.anchor->binding;
    auto const step = [&] {
        IteratorState* const walk = toIteratorState(state, 1);
        if (!walk || !walk->valid()) {
            lua_pushnil(state);
            return 1;
        }
        UsedStacks const stacks(*binding);
        readArguments(*binding, state, value, stacks.arguments());
        value.call(stacks.arguments(), stacks.results());
        walk->advance();
        return value.givesSeveral() ? pushElements(*binding, state, stacks.results())
                                    : pushResults(*binding, state, stacks.results(), text);
    };
    return complete(state, runNative(binding, state, text, step), text);
}

/// Calls the hook for the assignment whose arguments are on the stack.
void askAssignmentHook(lua_State* state, Binding& binding) {
    Binding::pushKept(state, binding.assignmentHook);
    for (int i = 1; i <= 3; ++i) lua_pushvalue(state, i);
    binding.asksAssignmentHook = false;
    int const status = lua_pcall(state, 3, 0, 0);
    Binding::pushKept(state, binding.assignmentHook);  // it may have ended itself
    binding.asksAssignmentHook = lua_isfunction(state, -1);
    lua_pop(state, 1);
    if (status != 0) lua_error(state);
}

/// Replaces the key on top by its value in the table that is the second upvalue. Returns the cell if it is a property;
/// otherwise null.
MemberCell const* findProperty(lua_State* state) noexcept {
    lua_rawget(state, lua_upvalueindex(2));
    return static_cast<MemberCell const*>(lua_touserdata(state, -1));
}

/// The cell for a name that the class does not have; null for a member, for other keys, and when there is none.
/// Requires: the member is on top.
MemberCell const* findOtherName(lua_State* state, int key) noexcept {
    if (!lua_isnil(state, -1) || lua_type(state, key) != LUA_TSTRING) return nullptr;
    return static_cast<MemberCell const*>(lua_touserdata(state, lua_upvalueindex(3)));
}

char const* classNameOf(lua_State* state, int index) noexcept {
    Box const* const box = toBox(state, index);
    return box ? box->objectClass->name().c_str() : luaL_typename(state, index);
}

enum class Wanted { member, property };

/// Raises for the text key at `key`, for which the table at `members` has no wanted member.
int failOnMember(lua_State* state, char const* className, int members, int key, Wanted wanted) {
    char question[128] = "";
    try {
        urString::NearestName nearest(lua_tostring(state, key));
        for (lua_pushnil(state); lua_next(state, members); lua_pop(state, 1)) {
            bool const isOffered = wanted == Wanted::member || lua_isuserdata(state, -1);
            if (isOffered && lua_type(state, -2) == LUA_TSTRING) nearest.offer(lua_tostring(state, -2));
        }
        std::snprintf(question, sizeof question, "%s", nearest.question().c_str());
    } catch (std::bad_alloc const&) {  // then without
    }
    char const* const kind = wanted == Wanted::member ? "member" : "property";
    return luaL_error(state, "%s has no %s %s%s", className, kind, lua_tostring(state, key), question);
}

}  // namespace

int callFunction(Binding* binding, lua_State* state, Function const& function, ShortText& text) noexcept {
    return callAt(binding, state, function, {lua_gettop(state), 1}, text);
}

int callMember(lua_State* state) {
    ShortText text;
    MemberCell const& cell = cellOf(state);
    return complete(state, callFunction(cell.anchor->binding, state, *cell.member->function, text), text);
}

int beginIteration(lua_State* state) {
    ShortText text;
    MemberCell const& cell = cellOf(state);
    int const outcome = callFunction(cell.anchor->binding, state, *cell.member->function, text);
    if (outcome < 0) return complete(state, outcome, text);
    if (outcome != 1 || !toIteratorState(state, -1)) return luaL_error(state, "nothing to walk over");
    int const walk = lua_gettop(state);
    lua_pushvalue(state, lua_upvalueindex(1));
    lua_pushvalue(state, walk);
    lua_pushvalue(state, 1);
    lua_pushcclosure(state, &stepIteration, 3);
    return 1;
}

int indexObject(lua_State* state) {
    if (lua_gettop(state) != 2) lua_settop(state, 2);
    lua_pushvalue(state, 2);
    MemberCell const* const property = findProperty(state);
    if (MemberCell const* const other = property ? nullptr : findOtherName(state, 2)) {
        ShortText text;
        return complete(state, callAt(other->anchor->binding, state, *other->member->function, {2, 1}, text), text);
    }
    if (!property) {
        bool const isMissing = lua_isnil(state, -1) && lua_type(state, 2) == LUA_TSTRING;
        if (!isMissing) return 1;
        return failOnMember(state, classNameOf(state, 1), lua_upvalueindex(2), 2, Wanted::member);
    }
    ShortText text;
    return complete(state, callAt(property->anchor->binding, state, *property->member->function, {1, 1}, text), text);
}

int missMember(lua_State* state) {
    if (lua_type(state, 2) != LUA_TSTRING) return 0;
    return failOnMember(state, lua_tostring(state, lua_upvalueindex(1)), 1, 2, Wanted::member);
}

int assignProperty(lua_State* state) {
    lua_pushvalue(state, 2);
    MemberCell const* const property = findProperty(state);
    MemberCell const* const other = property ? nullptr : findOtherName(state, 2);
    if (!property && !other) {
        char const* const owner = classNameOf(state, 1);
        if (lua_type(state, 2) == LUA_TSTRING) {
            return failOnMember(state, owner, lua_upvalueindex(2), 2, Wanted::property);
        }
        return luaL_error(state, "%s has no property %s", owner, luaL_typename(state, 2));
    }
    if (property && !property->member->second) {
        return luaL_error(state, "%s.%s is read-only", classNameOf(state, 1), lua_tostring(state, 2));
    }
    MemberCell const& assigned = property ? *property : *other;
    Binding* const binding = assigned.anchor->binding;
    if (binding && binding->asksAssignmentHook) askAssignmentHook(state, *binding);
    ShortText text;
    Places const places = property ? Places{2, 2} : Places{3, 1};
    return complete(state, callAt(binding, state, *assigned.member->second, places, text), text);
}

}  // namespace nxLC::impl
