// The base of every value in an item tree.
#pragma once

#include <concepts>
#include <cstddef>
#include <iosfwd>
#include <type_traits>
#include <typeinfo>

#include "foundation/ur/Export.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"

namespace nxPLST {

/// The kind of an item. "No value" is a null reference and has no kind.
enum Type : int { BoolType = 0, DoubleType = 1, StringType = 2, ArrayType = 3, DictionaryType = 4 };

/// A dynamically typed value: a boolean, a number, a text, an array or a dictionary of items.
///
/// Items are shared by reference and live as long as a reference exists; `clone` makes a private copy. Containers hold
/// their children but not their parents, so trees have no cycles. Copying, comparing and destroying work for any depth
/// without deep recursion.
///
/// One thread uses a tree at a time; after the last write, several may read it without adding or dropping references. A
/// tree may be destroyed on another thread than the one that created it.
class NX_API Item : public ur::ReferenceCount, public ur::NodeAllocated {
public:
    [[nodiscard]] Type type() const noexcept { return type_; }

    /// A deep copy that shares no item with this tree; a child held twice is copied twice. `expansionOf` returns the
    /// number of items in the copy.
    [[nodiscard]] ur::Reference<Item> clone() const { return onClone(); }

    /// Whether both trees have the same structure: kinds, sizes and keys; numbers and texts do not matter. This item's
    /// class decides the rule.
    [[nodiscard]] bool congruent(Item const& other) const { return onCongruent(other); }

protected:
    explicit Item(Type type) noexcept : type_(type) {}
    Item(Item const& other) noexcept = default;
    Item& operator=(Item const& /*other*/) noexcept { return *this; }
    ~Item() override = default;

private:
    [[nodiscard]] virtual ur::Reference<Item> onClone() const = 0;
    [[nodiscard]] virtual bool onCongruent(Item const& other) const { return typeid(*this) == typeid(other); }

    Type const type_;
};

/// Whether two trees have the same values: kinds, sizes, keys, numbers (not-a-number equals itself) and texts.
[[nodiscard]] NX_API bool operator==(Item const& a, Item const& b);
/// The same for references; null equals only null.
[[nodiscard]] inline bool equal(ur::Reference<Item const> const& a, ur::Reference<Item const> const& b) {
    return a && b ? *a == *b : a == b;
}
/// Prints the item as one line of JSON, cut with "..." at a value without a JSON form. For tests and logs.
NX_API std::ostream& operator<<(std::ostream& out, Item const& item);
/// The same for a reference, "null" for a null one.
NX_API std::ostream& operator<<(std::ostream& out, ur::Reference<Item const> const& item);

template <class T>
struct Shape;

namespace impl {

/// Whether null is the item of a value: of an empty optional, of a null reference, or of a type whose shape allows it.
template <class T>
bool isNull(T const& value) {
    if constexpr (requires { value.has_value(); }) {
        return !value.has_value();
    } else if constexpr (std::convertible_to<T const&, ur::Reference<Item const>>) {
        return ur::Reference<Item const>(value).null();
    } else if constexpr (requires(ur::Reference<Item const> const& none) { Shape<T>::matches(none); }) {
        return Shape<T>::matches(ur::Reference<Item const>());
    } else {
        return false;
    }
}

template <class T>
ur::Reference<Item> converted(T const& value) {
    static_assert(
        !std::is_enum_v<T> || requires(ur::Reference<Item> & item) { convert(item, value); },
        "no names of this enumeration's values: include plst/containers.h and add namesOf "
        "(foundation/ur/describe.h)");
    static_assert(
        requires(ur::Reference<Item> & item) { convert(item, value); },
        "no conversion of this type to an item: include plst/convert.h or plst/containers.h, or list its members or "
        "names (foundation/ur/describe.h)");
    ur::Reference<Item> item;
    convert(item, value);
    return item;
}

/// Puts the item of a value into `out`. False, with `out` null, when the value has no item form.
template <class T>
bool tryConvert(ur::Reference<Item>& out, T const& value) {
    out = converted(value);
    return out || isNull(value);
}

}  // namespace impl

}  // namespace nxPLST
