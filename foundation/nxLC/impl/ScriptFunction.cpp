// Keeps functions across the language border, and calls scripts.
#include "foundation/nxLC/impl/ScriptFunction.h"

#include <new>

#include "foundation/nxLC/impl/calls.h"
#include "foundation/nxLC/impl/values.h"

namespace nxLC::impl {

using nxRFL::Function;
using nxRFL::Stack;
using Held = ur::Reference<Function>;

namespace {

/// The bytes that native code needs to keep a function, such as a callable and its list entry.
constexpr std::size_t bytesOfKeeper = 256;

/// Reserves room for every place to become free, so that freeing one needs no memory.
void reserveFreePlaces(Binding& binding) {
    auto const places = static_cast<std::size_t>(binding.functionPlaces) + 1;
    if (binding.freeFunctions.capacity() < places) binding.freeFunctions.reserve(2 * places);
}

/// The place stays in the table, so nothing is allocated here.
void freePlace(Binding& binding, int place) noexcept {
    lua_State* const state = binding.running;
    Binding::pushKept(state, binding.functions);
    lua_pushboolean(state, 0);
    lua_rawseti(state, -2, place);
    lua_pop(state, 1);
    binding.freeFunctions.push_back(place);  // its room was reserved with the place
}

/// The member of a class or table that scripts call by the function on top; null for a function of a script.
nxRFL::Member const* memberOnTop(lua_State* state) noexcept {
    lua_CFunction const function = lua_tocfunction(state, -1);
    if (function != &callMember && function != &beginIteration) return nullptr;
    lua_getupvalue(state, -1, 1);
    auto const* const cell = static_cast<MemberCell const*>(lua_touserdata(state, -1));
    lua_pop(state, 1);
    return cell->member;
}

/// Calls the native function that the second upvalue, a userdata, holds.
int callHeld(lua_State* state) {
    ShortText text;
    Held const& held = *static_cast<Held*>(lua_touserdata(state, lua_upvalueindex(2)));
    return complete(state, held ? callFunction(bindingOf(state), state, *held, text) : 0, text);
}

}  // namespace

ScriptFunction::ScriptFunction(Binding& binding, int place)
    : Function(&binding.database, false),
      link_(binding.link),
      place_(place),
      charge_(binding.database.account(), sizeof(ScriptFunction) + bytesOfKeeper) {}

ScriptFunction::~ScriptFunction() {
    Binding* const binding = link_->binding;
    if (binding) freePlace(*binding, place_);
}

bool ScriptFunction::push(Binding const& binding, lua_State* state) const noexcept {
    if (link_->binding != &binding) return false;
    Binding::pushKept(state, binding.functions);
    lua_rawgeti(state, -1, place_);
    lua_replace(state, -2);
    return true;
}

urString::CString ScriptFunction::describe() const {
    Binding const* const binding = link_->binding;
    if (!binding || !push(*binding, binding->running)) return Function::describe();
    if (nxRFL::Member const* const member = memberOnTop(binding->running)) {
        lua_pop(binding->running, 1);
        return member->function->describe();
    }
    lua_Debug info{};
    lua_getinfo(binding->running, ">S", &info);
    if (info.linedefined <= 0) return Function::describe();
    return urString::CString::format("the function at %s:%d", info.short_src, info.linedefined);
}

void ScriptFunction::onCall(Stack const& arguments, Stack& results) const {
    struct Call {
        ScriptFunction const& function;
        Binding& binding;
        Stack const& arguments;
        Stack& results;
    };
    if (!link_->binding) return;
    if (link_->binding->meter.ended()) throw nxRFL::Exception("the script has ended");
    Held const self(const_cast<ScriptFunction*>(this));  // the script may drop the last reference
    Call call{*this, *link_->binding, arguments, results};
    Body const body = [](lua_State* state, void* context) {
        Call const& called = *static_cast<Call*>(context);
        if (!called.function.push(called.binding, state)) return 0;
        int const count = pushItems(called.binding, state, called.arguments);
        lua_call(state, count, LUA_MULTRET);
        readValues(called.binding, state, 1, called.results);
        return 0;
    };
    try {
        call.binding.protectCall(body, &call);
    } catch (ur::BudgetSpent const& error) {
        throw nxRFL::Exception(error.what());
    }
}

int keepFunction(Binding& binding, lua_State* state, int index) {
    bool const isNew = binding.freeFunctions.empty();
    int const place = isNew ? binding.functionPlaces + 1 : binding.freeFunctions.back();
    if (isNew) reserveFreePlaces(binding);
    Binding::pushKept(state, binding.functions);
    lua_pushvalue(state, index);
    lua_rawseti(state, -2, place);
    lua_pop(state, 1);
    if (isNew) {
        ++binding.functionPlaces;
    } else {
        binding.freeFunctions.pop_back();
    }
    return place;
}

Held functionAt(Binding& binding, int place) {
    try {
        return Held(new ScriptFunction(binding, place));
    } catch (...) {
        freePlace(binding, place);
        throw;
    }
}

void pushScriptFunction(Binding& binding, lua_State* state, Held const& function) {
    auto const* const own = dynamic_cast<ScriptFunction const*>(function.get());
    if (own && own->push(binding, state)) return;
    Binding::pushKept(state, binding.anchor);
    auto* const held = new (lua_newuserdata(state, sizeof(Held))) Held();
    Binding::pushKept(state, binding.functionBoxes);
    lua_setmetatable(state, -2);
    *held = function;  // from here on the userdata releases it
    lua_pushcclosure(state, &callHeld, 2);
}

int collectFunction(lua_State* state) {
    if (auto* const held = static_cast<Held*>(lua_touserdata(state, 1))) held->reset();
    return 0;
}

}  // namespace nxLC::impl
