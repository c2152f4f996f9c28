// Native objects as userdata.
#pragma once

#include <cstdint>
#include <iterator>

#include "foundation/nxLC/impl/Binding.h"
#include "foundation/nxRFL/Class.h"

namespace nxLC::impl {

/// The content of a userdata that stands for an object. It holds the object by one of the two pairs of operations of
/// its class; without a pointer the object has been given up.
struct Box {
    void* pointer;
    nxRFL::Class const* objectClass;
    bool isOwned;
};

/// Metatables hold one of these addresses at index 1, which scripts cannot make themselves.
inline constexpr char objectMark = 0;
inline constexpr char classMark = 0;

/// Null when the value is no object of a binding. Uses two places of the stack; never raises.
[[nodiscard]] Box* toBox(lua_State* state, int index) noexcept;
/// Where it is noted that a userdata has been looked at, until it is collected. Those that have been given up already
/// are not noted: nothing tells when they go.
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
/// The class whose table the value is, or null. Never raises.
[[nodiscard]] nxRFL::Class* toClass(lua_State* state, int index) noexcept;

/// Pushes the userdata of an object that the state knows. False when it does not, or has not met the class yet.
/// Never raises; throws when the class is not registered.
[[nodiscard]] bool pushKnown(Binding& binding, lua_State* state, nxRFL::Object const& object);
/// Pushes the userdata of an object, a new one if need be. Requires: not null. Raises and throws.
void pushNew(Binding& binding, lua_State* state, nxRFL::Object const& object);

/// Gives up the objects that finalizers have met while the state closed: nothing finalizes their userdata.
void giveUpObjects(Binding& binding, lua_State* state) noexcept;

/// The functions of metatables; their first upvalue is the anchor.
int collectObject(lua_State* state);
int compareObjects(lua_State* state);
int describeObject(lua_State* state);

}  // namespace nxLC::impl
