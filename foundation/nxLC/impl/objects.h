// Represents native objects as userdata.
#pragma once

#include <cstdint>
#include <iterator>

#include "foundation/nxLC/impl/Binding.h"
#include "foundation/nxRFL/Class.h"

namespace nxLC::impl {

/// The content of a userdata that stands for an object. It holds the object by one of its class's two pairs of
/// operations; a null pointer means that the object was released.
struct Box {
    void* pointer;
    nxRFL::Class const* objectClass;
    bool isOwned;
};

/// Metatables hold one of these addresses at index 1. Scripts cannot create them.
inline constexpr char objectMark = 0;
inline constexpr char classMark = 0;

/// Null when the value is not an object of a binding. Uses two stack places; never raises.
[[nodiscard]] Box* toBox(lua_State* state, int index) noexcept;
/// The cache entry for a verified userdata, valid until it is collected. Released userdata are not cached: no call
/// reports their collection.
[[nodiscard]] inline Box const*& verifiedAt(Binding& binding, void const* content) noexcept {
    return binding.verified[reinterpret_cast<std::uintptr_t>(content) / sizeof(Box) % std::size(binding.verified)];
}
/// The same, faster for objects that are used repeatedly.
[[nodiscard]] inline Box* toBox(Binding& binding, lua_State* state, int index) noexcept {
    auto* const content = static_cast<Box*>(lua_touserdata(state, index));
    if (content && content == verifiedAt(binding, content)) return content;
    Box* const box = toBox(state, index);
    if (box && box->pointer) verifiedAt(binding, box) = box;
    return box;
}
/// The class that the table stands for, or null. Never raises.
[[nodiscard]] nxRFL::Class* toClass(lua_State* state, int index) noexcept;

/// Pushes the userdata of an object that the state knows. False when it does not know the object or its class. Never
/// raises; throws when the class is not registered.
[[nodiscard]] bool pushKnown(Binding& binding, lua_State* state, nxRFL::Object const& object);
/// Pushes the userdata of an object and creates it if needed. Requires: not null. Raises and throws.
void pushNew(Binding& binding, lua_State* state, nxRFL::Object const& object);

/// Releases the objects that finalizers received while the state closed: nothing finalizes their userdata.
void giveUpObjects(Binding& binding, lua_State* state) noexcept;

/// Metamethods; their first upvalue is the anchor.
int collectObject(lua_State* state);
int compareObjects(lua_State* state);
int describeObject(lua_State* state);

}  // namespace nxLC::impl
