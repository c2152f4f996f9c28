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

/// The place of a container that is not there.
inline constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

/// The head of an array or of a dictionary; what it holds follows it on the stack.
struct Container {
    enum class Kind : std::uint8_t { array, dictionary };

    Kind kind;
    std::uint32_t items;   ///< directly inside; a dictionary's keys count as well
    std::uint32_t length;  ///< values from this head up to the first one behind its contents
    std::uint32_t parent;  ///< how far before this head that of the enclosing container lies; 0 when outermost

    /// The place of the enclosing container's head, for this one at `at`.
    [[nodiscard]] std::size_t enclosing(std::size_t at) const noexcept { return parent == 0 ? nowhere : at - parent; }
};

/// How many scripts and values on stacks hold a stack as an object. A copy of the stack is held by nobody.
struct Holders {
    Holders() noexcept = default;
    Holders(Holders const&) noexcept {}
    Holders& operator=(Holders const&) noexcept { return *this; }

    std::uint32_t count = 0;
    bool isGiven = false;  ///< to scripts: the last holder deletes it
};

using Value = std::variant<std::monostate, bool, double, urString::CString, Container, Object, ur::Reference<Function>>;

}  // namespace impl

/// A sequence of items: null, truth values, numbers, texts, objects, functions, and arrays and dictionaries of items.
///
/// `Writer` appends items, `Reader` reads them from the first on; what is written is well formed at any time. A value:
/// a copy shares objects and functions, nothing else. Functions and objects are counted as they themselves count. A
/// stack is itself an object to scripts: one that was given to them goes with the last that holds it.
///
/// A stack that scripts fill is charged for what it holds, and so are stacks to which its items are copied: writing
/// then throws `ur::BudgetSpent` when too much is there.
class NX_API Stack {
public:
    Stack() noexcept = default;
    Stack(Stack const&) = default;
    Stack(Stack&& other) noexcept;
    Stack& operator=(Stack other) noexcept;
    ~Stack() { dismantle(); }

    /// Charges what is written from now on. The first account stays.
    void chargeTo(std::shared_ptr<ur::Account> const& account) {
        if (!charge_) charge_ = ur::Charge(account, sizeof(Stack));
    }
    /// The number of items; what containers hold does not count.
    [[nodiscard]] unsigned size() const noexcept { return items_; }
    [[nodiscard]] bool empty() const noexcept { return items_ == 0; }
    /// The number of values, heads of containers and what they hold included.
    [[nodiscard]] std::size_t length() const noexcept { return values_.size(); }
    /// Keeps some storage for items to come.
    void clear() noexcept;

private:
    friend class Database;
    friend class Reader;
    friend class Writer;

    /// How scripts and values hold stacks.
    [[nodiscard]] static impl::TypeUtil const& stackType() noexcept;
    static void letGo(void* stack);
    /// The last holder of a stack that was given away has gone.
    [[nodiscard]] bool dropHolder() noexcept;

    /// The bytes of a text on the heap.
    [[nodiscard]] static std::size_t ownedBytes(urString::CString const& text) noexcept {
        constexpr std::size_t inlineSize = 15;
        return text.size() > inlineSize ? text.size() : 0;
    }
    [[nodiscard]] static std::size_t bytesOf(impl::Value const& value) noexcept;
    /// Before one more value is written that owns so many bytes of text. Requires: there is an account.
    void chargeValue(std::size_t textBytes);
    /// Before copies of these are written, for which `capacity` is reserved.
    void chargeValues(std::span<impl::Value const> values, std::size_t capacity);
    void dismantle() noexcept;
    void takeApart(Stack*& chain) noexcept;

    ur::vector<impl::Value> values_;
    unsigned items_ = 0;
    impl::Holders holders_;
    Stack* next_ = nullptr;  ///< while a chain of stacks that hold each other is deleted
    ur::Charge charge_;
};

inline void Function::validateArity(Stack const& arguments, unsigned count) const {
    if (arguments.size() != count) [[unlikely]]
        failArity(arguments, count);
}

}  // namespace nxRFL
