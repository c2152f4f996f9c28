// The counted pointer to an object that counts its own holders.
#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include "foundation/ur/NodeHeap.h"

namespace ur {

/// Holds one count of an object whose class has `ref()` and `unref()`, or nothing.
///
/// Copying adds a holder, moving does not change the count. Dereferencing a null reference is not checked.
template <class T>
class Reference {
public:
    using element_type = T;

    constexpr Reference() noexcept = default;
    constexpr Reference(std::nullptr_t) noexcept {}
    /// Adds a holder to `object`, which may be null. So the result of `new` can be passed directly.
    Reference(T* object) noexcept : object_(object) {
        if (object_) object_->ref();
    }
    Reference(Reference const& other) noexcept : Reference(other.object_) {}
    Reference(Reference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class U>
    requires std::convertible_to<U*, T*> Reference(Reference<U> const& other)
    noexcept : Reference(static_cast<T*>(other.get())) {}
    template <class U>
    requires std::convertible_to<U*, T*> Reference(Reference<U>&& other)
    noexcept : object_(other.release()) {}
    ~Reference() {
        if (object_) object_->unref();
    }

    /// The former object loses its holder only after the new one is in place, so its destructor may use this reference.
    Reference& operator=(Reference other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    [[nodiscard]] T* get() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    T* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    [[nodiscard]] bool null() const noexcept { return object_ == nullptr; }

    void reset() noexcept { *this = Reference(); }
    void reset(T* object) noexcept { *this = Reference(object); }
    /// Returns the object without dropping the count, which the caller then owns.
    [[nodiscard]] T* release() noexcept { return std::exchange(object_, nullptr); }
    void swap(Reference& other) noexcept { std::swap(object_, other.object_); }

    /// Takes over a count that the caller owns; the counterpart of `release`.
    [[nodiscard]] static Reference adopt(T* object) noexcept {
        Reference result;
        result.object_ = object;
        return result;
    }

    friend void swap(Reference& a, Reference& b) noexcept { a.swap(b); }
    template <class U>
    friend bool operator==(Reference const& a, Reference<U> const& b) noexcept {
        return a.get() == b.get();
    }
    friend bool operator==(Reference const& a, T const* b) noexcept { return a.object_ == b; }
    friend bool operator==(Reference const& a, std::nullptr_t) noexcept { return a.object_ == nullptr; }
    friend bool operator<(Reference const& a, Reference const& b) noexcept {
        return std::less<T const*>()(a.object_, b.object_);
    }

private:
    T* object_ = nullptr;
};

/// A new T held by its first reference.
template <class T, class... Args>
[[nodiscard]] Reference<T> make(Args&&... args) {
    static_assert(
        requires(T const& object) { object.ref(), object.unref(); },
        "no ref() and unref() to count holders with: derive the class from ur::ReferenceCount");
    return Reference<T>(new T(std::forward<Args>(args)...));
}

/// The same object as a U when its dynamic class allows it, otherwise null. Null stays null.
template <class U, class T>
[[nodiscard]] Reference<U> dynamicCast(Reference<T> const& from) noexcept {
    return Reference<U>(dynamic_cast<U*>(from.get()));
}

}  // namespace ur

/// Vectors of references are the many small arrays of value trees: they use the same storage as the trees' nodes.
template <class T>
struct std::allocator<ur::Reference<T>> {
    using value_type = ur::Reference<T>;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using propagate_on_container_move_assignment = std::true_type;
    using is_always_equal = std::true_type;

    allocator() noexcept = default;
    template <class U>
    allocator(allocator<U> const& /*other*/) noexcept {}

    [[nodiscard]] value_type* allocate(std::size_t count) {
        return static_cast<value_type*>(ur::allocateNode(count * sizeof(value_type)));
    }
    void deallocate(value_type* elements, std::size_t count) noexcept {
        ur::deallocateNode(elements, count * sizeof(value_type));
    }

    friend bool operator==(allocator, allocator) noexcept { return true; }
};

template <class T>
struct std::hash<ur::Reference<T>> {
    std::size_t operator()(ur::Reference<T> const& reference) const noexcept {
        return std::hash<T*>()(reference.get());
    }
};
