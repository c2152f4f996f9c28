// The public functions of a binding.
#include "foundation/nxLC/ReflectionData.h"

#include "foundation/nxLC/impl/Binding.h"
#include "foundation/nxLC/impl/libraries.h"
#include "foundation/nxLC/impl/objects.h"
#include "foundation/nxLC/impl/publish.h"

namespace nxLC {

using impl::Binding;

ReflectionData* ReflectionData::find(lua_State* state) noexcept {
    Binding* const binding = Binding::find(state);
    return binding ? &binding->data : nullptr;
}

ReflectionData& ReflectionData::bind(lua_State* state, nxRFL::Database& database) {
    if (Binding* const binding = Binding::find(state)) {
        binding->data.publish();
        return binding->data;
    }
    return Binding::bind(state, database).data;
}

nxRFL::Database* ReflectionData::getDB() const noexcept { return &binding_.database; }

void ReflectionData::publish() {
    protect(binding_.running, 0, 0, [this](lua_State* state) {
        impl::publishAll(binding_, state);
        return 0;
    });
}

void ReflectionData::pushObject(lua_State* state, nxRFL::Object const& object) {
    using nxRFL::Object;
    if (object.null()) return lua_pushnil(state);
    if (!object.isGiven()) {
        nxRFL::Class const* const known = object.getClass();
        return pushObject(
            state, known ? Object::give(object.pointer(), *known) : Object::give(object.pointer(), object.typeUtil()));
    }
    if (impl::pushKnown(binding_, state, object)) return;
    protect(state, 0, 1, [&](lua_State* inner) {
        impl::pushNew(binding_, inner, object);
        return 1;
    });
}

int ReflectionData::getObjectTableSize(lua_State* /*state*/) const noexcept { return binding_.objectCount; }

void ReflectionData::setPropertyAssignmentHook(lua_State* state, int index) noexcept {
    lua_pushvalue(state, index);
    lua_rawseti(state, LUA_REGISTRYINDEX, binding_.assignmentHook);
    binding_.asksAssignmentHook = true;
}

void ReflectionData::clearPropertyAssignmentHook(lua_State* state) noexcept {
    lua_pushboolean(state, 0);
    lua_rawseti(state, LUA_REGISTRYINDEX, binding_.assignmentHook);
    binding_.asksAssignmentHook = false;
}

void ReflectionData::setLimits(Limits const& limits) noexcept { binding_.meter.setLimits(limits); }

void ReflectionData::spend(std::uint64_t instructions) { binding_.meter.spendOrThrow(instructions); }

void ReflectionData::interrupt() noexcept { binding_.meter.interrupt(); }

void ReflectionData::end() noexcept {
    impl::dropFinalizers(binding_.running);
    binding_.meter.end(binding_.running);
}

}  // namespace nxLC
