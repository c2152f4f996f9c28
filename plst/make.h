// Builds trees of items in place, and reads values from them.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "foundation/urString/CString.h"
#include "plst/Path.h"
#include "plst/containers.h"

namespace nxPLST {

namespace impl {

inline bool isText(ur::Reference<Item> const& item) { return item && item->type() == StringType; }

}  // namespace impl

/// A new item for a value. Null when the value has no item form: an integer beyond 2^53 that is no double, an
/// enumeration value without a name, or whatever contains one.
template <class T>
[[nodiscard]] ur::Reference<Item> itemOf(T const& value) {
    return impl::converted(value);
}

/// Anything that can become an item: a value of a type with a shape, an item, or values in braces.
///
/// Values in braces form an array. If each of them is itself a pair in braces whose first value is a text, they form a
/// dictionary: `{{"x", 1}, {"y", 2}}`; write `array({...})` for an array of such pairs.
class Value {
public:
    template <class T>
    Value(T const& value)  // NOLINT(google-explicit-constructor): stands for the value
        : hasItemForm_(impl::tryConvert(item_, value)) {}
    Value(ur::Reference<Item> item) : item_(std::move(item)) {}  // NOLINT(google-explicit-constructor): the same
    template <std::derived_from<Item> T>
    Value(ur::Reference<T> item) : item_(std::move(item)) {}  // NOLINT(google-explicit-constructor): the same
    Value(std::nullptr_t) {}                                  // NOLINT(google-explicit-constructor): the same
    inline Value(std::initializer_list<Value> elements);

    [[nodiscard]] ur::Reference<Item> const& item() const noexcept { return item_; }
    /// False, with a null item, for a value without item form.
    [[nodiscard]] bool hasItemForm() const noexcept { return hasItemForm_; }

private:
    inline static ur::Reference<Item> ofBraces(std::initializer_list<Value> elements);

    ur::Reference<Item> item_;
    bool hasItemForm_ = true;
    bool isMember_ = false;  ///< a pair in braces, the first a text
};

/// A new array of these elements; items are shared, not copied. Null when one has no item form.
[[nodiscard]] inline ur::Reference<Array> array(std::initializer_list<Value> elements) {
    auto result = ur::make<Array>();
    result->array().reserve(elements.size());
    for (Value const& element : elements) {
        if (!element.hasItemForm()) return nullptr;
        result->insert(element.item());
    }
    return result;
}

/// A new dictionary of these entries, without null values: `dictionary({{"name", "desk"}, {"size", 1.5}, {"at", {1, 2,
/// 3}}})`. The last value of a repeated key stays. Null when a value has no item form.
[[nodiscard]] inline ur::Reference<Dictionary> dictionary(
    std::initializer_list<std::pair<urString::CString, Value>> members) {
    auto result = ur::make<Dictionary>();
    for (auto const& [key, value] : members) {
        if (!value.hasItemForm()) return nullptr;
        if (value.item()) result->insert(key, value.item());
    }
    return result;
}

inline Value::Value(std::initializer_list<Value> elements)
    : item_(ofBraces(elements)),
      hasItemForm_(!item_.null()),
      isMember_(elements.size() == 2 && impl::isText(elements.begin()->item())) {}

inline ur::Reference<Item> Value::ofBraces(std::initializer_list<Value> elements) {
    auto all = array(elements);
    bool const areMembers =
        all && elements.size() > 0 && std::ranges::all_of(elements, [](Value const& value) { return value.isMember_; });
    if (!areMembers) return all;
    auto members = ur::make<Dictionary>();
    for (auto const& pair : all->array()) {
        auto const& both = static_cast<Array const&>(*pair).array();
        if (both[1]) members->insert(static_cast<String const&>(*both[0]).value(), both[1]);
    }
    return members;
}

namespace impl {

template <class T>
T defaultOf() {
    static_assert(Shaped<T>,
                  "no item shape of this type: include plst/convert.h or plst/containers.h, or list its members or "
                  "names (foundation/ur/describe.h)");
    static_assert(std::default_initializable<T>, "a value without a default constructor is read with a fallback");
    return T();
}

/// A text that does not become a T by itself, but that a T can be made of: a view for a standard string.
template <class Text, class T>
concept TextFor = urString::ForeignText<Text> && !std::convertible_to<Text const&, T> &&
                  std::constructible_from<T, Text const&> && std::convertible_to<T const&, std::string_view>;

}  // namespace impl

/// The value of an item, or `fallback` when it is null or of another shape.
template <class T>
[[nodiscard]] T valueOf(ur::Reference<Item const> const& item, T fallback = impl::defaultOf<T>()) {
    static_assert(Shaped<T>,
                  "no item shape of this type: include plst/convert.h or plst/containers.h, or list its members or "
                  "names (foundation/ur/describe.h)");
    if constexpr (Shaped<T>) {
        if (hasShape<T>(item)) convert(fallback, item);
    }
    return fallback;
}
template <class T, impl::TextFor<T> Text>
[[nodiscard]] T valueOf(ur::Reference<Item const> const& item, Text const& fallback) {
    return valueOf<T>(item, T(fallback));
}

/// The value under a key, or `fallback` if none has that shape: `get<double>(settings, "size", 1.0)`. Also `fallback`
/// when `item` is no dictionary.
template <class T>
[[nodiscard]] T get(ur::Reference<Item const> const& item, std::string_view key, T fallback = impl::defaultOf<T>()) {
    auto const* const dictionary = impl::containerIn<Dictionary>(item, DictionaryType);
    if (!dictionary) return fallback;
    auto const member = dictionary->dictionary().find(key);
    return member == dictionary->dictionary().end() ? fallback : valueOf<T>(member->second, std::move(fallback));
}
template <class T, impl::TextFor<T> Text>
[[nodiscard]] T get(ur::Reference<Item const> const& item, std::string_view key, Text const& fallback) {
    return get<T>(item, key, T(fallback));
}

}  // namespace nxPLST
