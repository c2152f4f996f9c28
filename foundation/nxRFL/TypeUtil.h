// The operations by which the reflection library holds objects of a native type.
#pragma once

#include <type_traits>

#include "foundation/ur/TypeInfo.h"

namespace nxRFL {

/// A class whose objects count their holders.
template <class T>
concept Counted = requires(T const& object) {
    object.ref();
    object.unref();
};

namespace impl {

/// Six operations on the objects of one class. A missing reference operation does nothing.
///
/// The first pair is called for every holder of an object that native code owns: a handle, a stack value, a script. The
/// second pair is called instead for the one script that owns the object after it was given away.
struct TypeUtil {
    using Action = void (*)(void* object);

    Action ref = nullptr;
    Action unref = nullptr;
    Action own = nullptr;
    Action disown = nullptr;
    /// The class for which this record was made.
    ur::TypeInfo (*staticType)() = nullptr;
    /// The dynamic class of the object.
    ur::TypeInfo (*dynamicType)(void const* object) = nullptr;
};

template <class T>
void ref(void* object) {
    static_cast<T*>(object)->ref();
}
template <class T>
void unref(void* object) {
    static_cast<T*>(object)->unref();
}
template <class T>
void destroy(void* object) {
    delete static_cast<T*>(object);
}
template <class T>
ur::TypeInfo dynamicType([[maybe_unused]] void const* object) {
    if constexpr (std::is_polymorphic_v<T>) {
        return ur::TypeInfo::of(*static_cast<T const*>(object));
    } else {
        return ur::TypeInfo::of<T>();
    }
}

/// Native code owns the objects, which outlive their use by scripts.
template <class T>
inline constexpr TypeUtil borrowedType = {
    .staticType = &ur::TypeInfo::of<T>,
    .dynamicType = &dynamicType<T>,
};
/// Every holder counts.
template <Counted T>
inline constexpr TypeUtil countedType = {
    .ref = &ref<T>,
    .unref = &unref<T>,
    .own = &ref<T>,
    .disown = &unref<T>,
    .staticType = &ur::TypeInfo::of<T>,
    .dynamicType = &dynamicType<T>,
};
/// As borrowed, but the script that an object was given to deletes it when done.
template <class T>
inline constexpr TypeUtil ownableType = {
    .disown = &destroy<T>,
    .staticType = &ur::TypeInfo::of<T>,
    .dynamicType = &dynamicType<T>,
};

template <class T>
[[nodiscard]] constexpr TypeUtil const& defaultTypeUtil() {
    if constexpr (Counted<T>) {
        return countedType<T>;
    } else {
        return borrowedType<T>;
    }
}

}  // namespace impl
}  // namespace nxRFL
