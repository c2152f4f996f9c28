// The item that holds a sequence of items.
#pragma once

#include <concepts>
#include <utility>

#include "foundation/ur/containers.h"
#include "plst/Item.h"

namespace nxPLST {

/// Items in insertion order. Elements should not be null.
///
/// Indexes are not checked. Requires: 0 to `size() - 1`.
class NX_API Array final : public Item {
public:
    Array() noexcept : Item(ArrayType) {}
    ~Array() override;

    [[nodiscard]] ur::vector<ur::Reference<Item>>& array() noexcept { return array_; }
    [[nodiscard]] ur::vector<ur::Reference<Item>> const& array() const noexcept { return array_; }

    /// Appends `item`; nothing can be inserted in the middle.
    void insert(ur::Reference<Item> item) { array_.push_back(std::move(item)); }
    /// Appends a value as an item, as `Dictionary::insert`.
    template <class T>
    requires(!std::convertible_to<T const&, ur::Reference<Item>>) bool insert(T const& value) {
        ur::Reference<Item> item;
        if (!impl::tryConvert(item, value)) return false;
        insert(std::move(item));
        return true;
    }

    /// A reference to the element, assignable until the array grows.
    [[nodiscard]] ur::Reference<Item>& operator[](int index) noexcept {
        return array_[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] ur::Reference<Item> operator[](int index) const noexcept {
        return array_[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] ur::Reference<Item> objectAt(int index) const noexcept {
        return array_[static_cast<std::size_t>(index)];
    }

    [[nodiscard]] int size() const noexcept { return static_cast<int>(array_.size()); }
    [[nodiscard]] int capacity() const noexcept { return static_cast<int>(array_.capacity()); }
    [[nodiscard]] bool empty() const noexcept { return array_.empty(); }
    void clear() noexcept;

private:
    [[nodiscard]] ur::Reference<Item> onClone() const override;
    [[nodiscard]] bool onCongruent(Item const& other) const override;

    ur::vector<ur::Reference<Item>> array_;
};

}  // namespace nxPLST
