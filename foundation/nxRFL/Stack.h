// The values that pass between scripts and native code.
#pragma once

#include <cstddef>
#include <cstdint>
#include <variant>

#include "foundation/nxRFL/Function.h"
#include "foundation/nxRFL/Object.h"

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
class NX_API Stack {
public:
    /// The number of items; what containers hold does not count.
    [[nodiscard]] unsigned size() const noexcept { return items_; }
    [[nodiscard]] bool empty() const noexcept { return items_ == 0; }
    /// Keeps its storage for items to come.
    void clear() noexcept {
        values_.clear();
        items_ = 0;
    }

private:
    friend class Database;
    friend class Reader;
    friend class Writer;

    ur::vector<impl::Value> values_;
    unsigned items_ = 0;
    impl::Holders holders_;
};

inline void Function::validateArity(Stack const& arguments, unsigned count) const {
    if (arguments.size() != count) [[unlikely]]
        failArity(arguments, count);
}

}  // namespace nxRFL
