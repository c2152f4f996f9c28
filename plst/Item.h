// The base of every value in an item tree.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <typeinfo>

#include "foundation/ur/Export.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"

namespace nxPLST {

/// The kind of an item. The writers dispatch on it; there is no kind for "no value", which is a null reference.
enum Type : int { BoolType = 0, DoubleType = 1, StringType = 2, ArrayType = 3, DictionaryType = 4 };

/// A dynamically typed value: a truth value, a number, a text, an array or a dictionary of items.
///
/// Items are shared by reference and live as long as someone holds them; a private copy is asked for with
/// `clone`. Containers hold their children and never their parents, so trees have no cycles. Trees of any depth
/// are copied, compared and destroyed without deep recursion.
///
/// One thread uses a tree at a time, or several read it after the last write without taking or dropping
/// references. A tree may be dropped on another thread than the one that made it.
class NX_API Item : public ur::ReferenceCount, public ur::NodeAllocated {
public:
    [[nodiscard]] Type type() const noexcept { return type_; }

    /// A deep copy that shares no item with this tree; a child held twice is copied twice. `expansionOf` tells how many
    /// items that makes.
    [[nodiscard]] ur::Reference<Item> clone() const { return onClone(); }

    /// Whether both trees have the same structure: kinds, sizes and keys, whatever the numbers and texts in them.
    /// This item's class decides the rule.
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
/// The same for references; null equals null alone.
[[nodiscard]] inline bool equal(ur::Reference<Item const> const& a, ur::Reference<Item const> const& b) {
    return a && b ? *a == *b : a == b;
}
/// Prints the JSON of the item on one line, up to what JSON has no form for. For tests and logs.
NX_API std::ostream& operator<<(std::ostream& out, Item const& item);
/// The same for a reference, "null" for a null one.
NX_API std::ostream& operator<<(std::ostream& out, ur::Reference<Item const> const& item);

namespace impl {

template <class T>
ur::Reference<Item> converted(T const& value) {
    static_assert(
        requires(ur::Reference<Item> & item) { convert(item, value); },
        "no conversion of this type to an item: include plst/convert.h or plst/containers.h, or add one");
    ur::Reference<Item> item;
    convert(item, value);
    return item;
}

}  // namespace impl

}  // namespace nxPLST
