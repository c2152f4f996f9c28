// The values that pass between scripts and native code.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <variant>

#include "foundation/nxRFL/Function.h"
#include "foundation/nxRFL/Object.h"
#include "foundation/ur/Account.h"

namespace nxRFL {

namespace impl {

/// The index that means: no container.
inline constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

/// The head of an array or a dictionary; its content follows on the stack.
struct Container {
    enum class Kind : std::uint8_t { array, dictionary };

    Kind kind;
    std::uint32_t items;   ///< number of direct items; counts the keys of a dictionary
    std::uint32_t length;  ///< number of values from this head to the end of its content
    std::uint32_t parent;  ///< distance back to the enclosing container's head; 0 when outermost

    /// The index of the enclosing container's head, for this one at `at`.
    [[nodiscard]] std::size_t enclosing(std::size_t at) const noexcept { return parent == 0 ? nowhere : at - parent; }
};

/// The number of scripts and stack values that hold a stack as an object. A copied stack starts without holders.
struct Holders {
    Holders() noexcept = default;
    Holders(Holders const&) noexcept {}
    Holders& operator=(Holders const&) noexcept { return *this; }

    std::uint32_t count = 0;
    bool isGiven = false;  ///< given to scripts: the last holder deletes it
};

using Value = std::variant<std::monostate, bool, double, urString::CString, Container, Object, ur::Reference<Function>>;

}  // namespace impl

/// A sequence of items: null, booleans, numbers, texts, objects, functions, and arrays and dictionaries of items.
///
/// `Writer` appends items, `Reader` reads them from the first on; the content is well formed at any time. A value:
/// copies share only objects and functions, which keep their own counts. A stack is itself an object to scripts: a
/// stack given to scripts is destroyed with its last holder.
///
/// A stack that scripts fill is charged for its content, and so are stacks that copy its items: writing throws
/// `ur::BudgetSpent` when the limit is exceeded.
class NX_API Stack {
public:
    Stack() noexcept = default;
    Stack(Stack const&) = default;
    Stack(Stack&& other) noexcept;
    Stack& operator=(Stack other) noexcept;
    ~Stack() { dismantle(); }

    /// Charges later writes to `account`. The first account stays.
    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, sizeof(Stack));
    }
    /// The number of top-level items; the content of containers does not count.
    [[nodiscard]] unsigned size() const noexcept { return items_; }
    [[nodiscard]] bool empty() const noexcept { return items_ == 0; }
    /// The number of values, including heads and contents of containers.
    [[nodiscard]] std::size_t length() const noexcept { return values_.size(); }
    /// Keeps some storage for later items.
    void clear() noexcept;

private:
    friend class Database;
    friend class Reader;
    friend class Writer;

    /// The operations by which scripts and values hold stacks.
    [[nodiscard]] static impl::TypeUtil const& stackType() noexcept;
    static void dropReference(void* stack);
    /// True when the last holder of a stack that was given away is gone.
    [[nodiscard]] bool dropHolder() noexcept;

    /// The heap bytes of a text.
    [[nodiscard]] static std::size_t ownedBytes(urString::CString const& text) noexcept {
        constexpr std::size_t inlineSize = 15;
        return text.size() > inlineSize ? text.size() : 0;
    }
    [[nodiscard]] static std::size_t bytesOf(impl::Value const& value) noexcept;
    /// Call before writing a value that owns `textBytes` bytes of text. Requires: there is an account.
    void chargeValue(std::size_t textBytes);
    /// Call before writing copies of `values`, for which `capacity` is reserved.
    void chargeValues(std::span<impl::Value const> values, std::size_t capacity);
    void dismantle() noexcept;
    void takeApart(Stack*& chain) noexcept;

    ur::vector<impl::Value> values_;
    unsigned items_ = 0;
    impl::Holders holders_;
    Stack* next_ = nullptr;  ///< used while a chain of stacks that hold each other is deleted
    ur::Charge charge_;
};

inline void Function::validateArity(Stack const& arguments, unsigned count) const {
    if (arguments.size() != count) [[unlikely]]
        failArity(arguments, count);
}

}  // namespace nxRFL
