// Finds, creates and releases the userdata of objects.
#include "foundation/nxLC/impl/objects.h"

#include <utility>

#include "foundation/nxLC/impl/publish.h"

namespace nxLC::impl {

using nxRFL::Database;
using nxRFL::Object;

namespace {

/// The address at index 1 of the value's metatable, or null.
void* markOf(lua_State* state, int index) noexcept {
    if (!lua_getmetatable(state, index)) return nullptr;
    lua_rawgeti(state, -1, 1);
    void* const mark = lua_touserdata(state, -1);
    lua_pop(state, 2);
    return mark;
}

/// The object has a userdata already, which now owns the object if the handle gives it away.
void take(Box& box, Object const& object) {
    if (!object.isGiven()) return;
    auto const& util = box.objectClass->typeUtil();
    if (box.isOwned) {
        if (!util.own) object.passOn();  // the box is not a counted holder
        return;
    }
    box.isOwned = true;
    object.passOn();
    if (util.unref) util.unref(box.pointer);
}

void fill(Box& box, Object const& object, void* pointer) {
    box.pointer = pointer;
    box.isOwned = object.isGiven();
    if (box.isOwned) {
        object.passOn();
    } else if (auto const ref = box.objectClass->typeUtil().ref) {
        ref(pointer);
    }
}

void release(Box& box) {
    auto const& util = box.objectClass->typeUtil();
    void* const pointer = std::exchange(box.pointer, nullptr);
    if (auto const action = box.isOwned ? util.disown : util.unref) action(pointer);
}

void giveUp(Binding& binding, lua_State* state, Box& box) {
    NativeCall const call(binding, state);
    --binding.objectCount;
    release(box);
}

bool pushFound(lua_State* state, ClassTables const& tables, Database::Resolved const& resolved, Object const& object) {
    Binding::pushKept(state, tables.objects);
    lua_pushlightuserdata(state, resolved.pointer);
    lua_rawget(state, -2);
    auto* const box = static_cast<Box*>(lua_touserdata(state, -1));
    // A script that released an object explicitly may still hold its userdata when another object takes its address.
    if (!box || !box->pointer) {
        lua_pop(state, 2);
        return false;
    }
    lua_replace(state, -2);
    take(*box, object);
    return true;
}

}  // namespace

Box* toBox(lua_State* state, int index) noexcept {
    void* const content = lua_touserdata(state, index);
    return content && markOf(state, index) == &objectMark ? static_cast<Box*>(content) : nullptr;
}

nxRFL::Class* toClass(lua_State* state, int index) noexcept {
    if (!lua_istable(state, index) || markOf(state, index) != &classMark) return nullptr;
    lua_getmetatable(state, index);
    lua_rawgeti(state, -1, 2);
    auto* const result = static_cast<nxRFL::Class*>(lua_touserdata(state, -1));
    lua_pop(state, 2);
    return result;
}

bool pushKnown(Binding& binding, lua_State* state, Object const& object) {
    Database::Resolved const resolved = binding.database.resolve(object);
    bool const isClass = resolved.objectClass == binding.classOfClasses;
    ClassTables const* const tables =
        knownTables(binding, isClass ? *static_cast<nxRFL::Class*>(resolved.pointer) : *resolved.objectClass);
    if (!tables) return false;
    if (!isClass) return pushFound(state, *tables, resolved, object);
    Binding::pushKept(state, tables->classTable);
    return true;
}

void pushNew(Binding& binding, lua_State* state, Object const& object) {
    Database::Resolved const resolved = binding.database.resolve(object);
    if (resolved.objectClass == binding.classOfClasses)
        return pushClass(binding, state, *static_cast<nxRFL::Class*>(resolved.pointer));
    ClassTables const& tables = tablesOf(binding, state, *resolved.objectClass);
    if (pushFound(state, tables, resolved, object)) return;
    luaL_checkstack(state, 5, "too many values");
    resolved.objectClass->charge(resolved.pointer, binding.database.account());
    auto* const box = static_cast<Box*>(lua_newuserdata(state, sizeof(Box)));
    *box = {nullptr, resolved.objectClass, false};
    Binding::pushKept(state, tables.metatable);
    lua_setmetatable(state, -2);
    Binding::pushKept(state, tables.objects);
    lua_pushlightuserdata(state, resolved.pointer);
    lua_pushvalue(state, -3);
    lua_rawset(state, -3);
    lua_pop(state, 1);
    // Nothing can raise any more: from here on the userdata releases the object.
    fill(*box, object, resolved.pointer);
    ++binding.objectCount;
}

int collectObject(lua_State* state) {
    Binding* const binding = bindingOf(state);
    Box* const box = toBox(state, 1);
    if (box && binding) verifiedAt(*binding, box) = nullptr;
    if (!box || !box->pointer) return 0;
    if (binding) {
        giveUp(*binding, state, *box);
    } else {
        release(*box);
    }
    return 0;
}

void giveUpObjects(Binding& binding, lua_State* state) noexcept {
    for (std::size_t i = 0; i < binding.classes.size() && binding.objectCount > 0; ++i) {
        if (binding.classes[i].metatable == LUA_NOREF) continue;
        Binding::pushKept(state, binding.classes[i].objects);
        lua_pushnil(state);
        while (lua_next(state, -2)) {
            auto* const box = static_cast<Box*>(lua_touserdata(state, -1));
            lua_pop(state, 1);
            if (!box->pointer) continue;
            giveUp(binding, state, *box);
            // Its finalizer may have filled the table.
            lua_pop(state, 1);
            lua_pushnil(state);
        }
        lua_pop(state, 1);
    }
}

int compareObjects(lua_State* state) {
    Box const* const a = toBox(state, 1);
    Box const* const b = toBox(state, 2);
    bool const areAlive = a && b && a->pointer && b->pointer;
    lua_pushboolean(state, areAlive && (a->objectClass->cast(a->pointer, b->objectClass->getType()) == b->pointer ||
                                        b->objectClass->cast(b->pointer, a->objectClass->getType()) == a->pointer));
    return 1;
}

int describeObject(lua_State* state) {
    Box const* const box = toBox(state, 1);
    if (!box) return luaL_error(state, "an object is expected");
    lua_pushfstring(state, "%s: %p", box->objectClass->name().c_str(), box->pointer);
    return 1;
}

}  // namespace nxLC::impl
