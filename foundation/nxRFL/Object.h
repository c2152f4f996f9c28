// A typed handle to a native object.
#pragma once

#include <utility>

#include "foundation/nxRFL/TypeUtil.h"
#include "foundation/ur/Export.h"

namespace nxRFL {

class Class;

/// Names a native object together with its class, as far as that is known, or nothing.
///
/// The handle holds the object as its class's record says. One made by `give` passes on the ownership of the object:
/// the script that receives it, or the handle when none does, gives the object up at its end. Copies of any handle
/// hold like a handle made from pointer and class.
class NX_API Object {
public:
    /// No object.
    constexpr Object() noexcept = default;
    /// `pointer` may be null; it points to an object of exactly the class as which it is handed over, or of a class
    /// derived from it. The class, or the record, outlives the handle.
    Object(void* pointer, Class const& objectClass) noexcept;
    Object(void* pointer, impl::TypeUtil const& util) noexcept : Object(pointer, util, nullptr, Hold::shared) {}
    Object(Object const& other) noexcept : Object(other.pointer_, *other.util_, other.class_, Hold::shared) {}
    Object(Object&& other) noexcept
        : pointer_(std::exchange(other.pointer_, nullptr)),
          util_(other.util_),
          class_(other.class_),
          hold_(other.hold_) {}
    Object& operator=(Object other) noexcept {
        std::swap(pointer_, other.pointer_);
        std::swap(util_, other.util_);
        std::swap(class_, other.class_);
        std::swap(hold_, other.hold_);
        return *this;
    }
    ~Object() {
        if (pointer_) release();
    }

    [[nodiscard]] static Object give(void* pointer, Class const& objectClass) noexcept;
    [[nodiscard]] static Object give(void* pointer, impl::TypeUtil const& util) noexcept {
        return Object(pointer, util, nullptr, Hold::owned);
    }
    /// A handle that does not hold: for as long as somebody else is known to.
    [[nodiscard]] static Object borrow(void* pointer, Class const& objectClass) noexcept;

    [[nodiscard]] void* pointer() const noexcept { return pointer_; }
    [[nodiscard]] bool null() const noexcept { return pointer_ == nullptr; }
    /// Null when the handle was made with a record.
    [[nodiscard]] Class const* getClass() const noexcept { return class_; }
    [[nodiscard]] impl::TypeUtil const& typeUtil() const noexcept { return *util_; }
    [[nodiscard]] bool isGiven() const noexcept { return hold_ == Hold::owned; }

private:
    enum class Hold : unsigned char { shared, owned, borrowed };

    Object(void* pointer, impl::TypeUtil const& util, Class const* objectClass, Hold hold) noexcept
        : pointer_(pointer), util_(&util), class_(objectClass), hold_(hold) {
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
    Hold hold_ = Hold::shared;
};

}  // namespace nxRFL
