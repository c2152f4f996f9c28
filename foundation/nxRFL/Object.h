// A typed handle to a native object.
#pragma once

#include <utility>

#include "foundation/nxRFL/TypeUtil.h"
#include "foundation/ur/Export.h"

namespace nxRFL {

class Class;

/// Refers to a native object and its class, as far as known, or to nothing.
///
/// The handle holds the object as its class's record says. A handle made by `give` transfers ownership: the receiving
/// script, or the handle if no script receives it, releases the object at its end. Copies of any handle hold like a
/// handle made from pointer and class.
class NX_API Object {
public:
    enum class Hold : unsigned char {
        shared,    ///< by the first pair of operations
        owned,     ///< by the second pair, as `give` makes it
        borrowed,  ///< not at all: another holder keeps the object meanwhile
    };

    enum class Known : unsigned char {
        declared,  ///< the object may be of a derived class
        exact,     ///< the class is resolved: the object need not be inspected again, nor still exist
    };

    /// A handle without object.
    constexpr Object() noexcept = default;
    /// `pointer` may be null. It points to an object of class `objectClass`, which outlives the handle.
    Object(void* pointer, Class const& objectClass, Hold hold = Hold::shared, Known known = Known::declared) noexcept;
    Object(void* pointer, impl::TypeUtil const& util) noexcept
        : Object(pointer, util, nullptr, Hold::shared, Known::declared) {}
    Object(Object const& other) noexcept
        : Object(other.pointer_, *other.util_, other.class_, Hold::shared, other.known_) {}
    Object(Object&& other) noexcept
        : pointer_(std::exchange(other.pointer_, nullptr)),
          util_(other.util_),
          class_(other.class_),
          hold_(other.hold_),
          known_(other.known_) {}
    Object& operator=(Object other) noexcept {
        std::swap(pointer_, other.pointer_);
        std::swap(util_, other.util_);
        std::swap(class_, other.class_);
        std::swap(hold_, other.hold_);
        std::swap(known_, other.known_);
        return *this;
    }
    ~Object() {
        if (pointer_) release();
    }

    [[nodiscard]] static Object give(void* pointer, Class const& objectClass) noexcept {
        return Object(pointer, objectClass, Hold::owned);
    }
    [[nodiscard]] static Object give(void* pointer, impl::TypeUtil const& util) noexcept {
        return Object(pointer, util, nullptr, Hold::owned, Known::declared);
    }

    [[nodiscard]] void* pointer() const noexcept { return pointer_; }
    [[nodiscard]] bool null() const noexcept { return pointer_ == nullptr; }
    /// Null when the handle was made from a record.
    [[nodiscard]] Class const* getClass() const noexcept { return class_; }
    [[nodiscard]] impl::TypeUtil const& typeUtil() const noexcept { return *util_; }
    [[nodiscard]] bool isExact() const noexcept { return known_ == Known::exact; }
    [[nodiscard]] bool isGiven() const noexcept { return hold_ == Hold::owned; }
    [[nodiscard]] bool isBorrowed() const noexcept { return hold_ == Hold::borrowed; }
    /// Another holder has taken over the object and this handle's hold on it.
    void passOn() const noexcept { hold_ = Hold::borrowed; }

private:
    Object(void* pointer, impl::TypeUtil const& util, Class const* objectClass, Hold hold, Known known) noexcept
        : pointer_(pointer), util_(&util), class_(objectClass), hold_(hold), known_(known) {
        if (pointer_ && hold_ != Hold::borrowed) acquire();
    }
    void acquire() noexcept {
        if (auto const action = hold_ == Hold::owned ? util_->own : util_->ref) action(pointer_);
    }
    void release() noexcept {
        if (hold_ == Hold::borrowed) return;
        if (auto const action = hold_ == Hold::owned ? util_->disown : util_->unref) action(pointer_);
    }

    static constexpr impl::TypeUtil noType{};

    void* pointer_ = nullptr;
    impl::TypeUtil const* util_ = &noType;
    Class const* class_ = nullptr;
    mutable Hold hold_ = Hold::shared;
    Known known_ = Known::declared;
};

}  // namespace nxRFL
