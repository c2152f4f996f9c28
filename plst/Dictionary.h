// The item that holds items under text keys.
#pragma once

#include <concepts>
#include <string_view>

#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "plst/Item.h"

namespace nxPLST {

/// Items under unique keys, in ascending order of the keys' bytes. Values should not be null.
class NX_API Dictionary final : public Item {
public:
    using Map = ur::map<urString::CString, ur::Reference<Item>, ur::less<urString::CString>>;

    Dictionary() noexcept : Item(DictionaryType) {}
    ~Dictionary() override;

    [[nodiscard]] Map& dictionary() noexcept { return dictionary_; }
    [[nodiscard]] Map const& dictionary() const noexcept { return dictionary_; }

    /// The value under `key`; null when there is none.
    [[nodiscard]] ur::Reference<Item> find(urString::CString const& key) const;
    /// The same for a literal, a standard string or a view, which is not copied.
    template <urString::ForeignText Key>
    [[nodiscard]] ur::Reference<Item> find(Key const& key) const {
        return findText(urString::viewOf(key));
    }
    template <class Key>
    requires std::convertible_to<Key const&, std::string_view>
    [[nodiscard]] ur::Reference<Item> get(Key const& key) const { return find(key); }

    /// Stores `value` under `key` and replaces the former value, if any.
    void insert(urString::CString const& key, ur::Reference<Item> value);
    /// Stores a value as an item: `insert("size", 1.5)`. Needs the header that converts it: plst/convert.h, or
    /// plst/containers.h for containers, enumerations and structures. False, with nothing changed, when the value has
    /// no item form, as plst/convert.h says.
    template <class T>
    requires(!std::convertible_to<T const&, ur::Reference<Item>>) bool insert(urString::CString const& key,
                                                                              T const& value) {
        ur::Reference<Item> item;
        if (!impl::tryConvert(item, value)) return false;
        insert(key, std::move(item));
        return true;
    }

    [[nodiscard]] int size() const noexcept { return static_cast<int>(dictionary_.size()); }
    [[nodiscard]] bool empty() const noexcept { return dictionary_.empty(); }

private:
    [[nodiscard]] ur::Reference<Item> findText(std::string_view key) const;
    [[nodiscard]] ur::Reference<Item> onClone() const override;
    [[nodiscard]] bool onCongruent(Item const& other) const override;

    Map dictionary_;
};

}  // namespace nxPLST
