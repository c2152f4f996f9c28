// Builds trees of items in place, and reads values from them.
#pragma once

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "plst/Path.h"
#include "plst/containers.h"

namespace nxPLST {

/// A new item for a value.
template <class T>
[[nodiscard]] ur::Reference<Item> itemOf(T const& value) {
    return impl::converted(value);
}

/// Anything that can become an item: a value of a type with a shape, an item, or values in braces, which form an array.
class Value {
public:
    template <class T>
    Value(T const& value) : item_(itemOf(value)) {}  // NOLINT(google-explicit-constructor): stands for the value
    Value(ur::Reference<Item> item) : item_(std::move(item)) {}  // NOLINT(google-explicit-constructor): the same
    template <std::derived_from<Item> T>
    Value(ur::Reference<T> item) : item_(std::move(item)) {}  // NOLINT(google-explicit-constructor): the same
    Value(std::nullptr_t) {}                                  // NOLINT(google-explicit-constructor): the same
    inline Value(std::initializer_list<Value> elements);

    [[nodiscard]] ur::Reference<Item> const& item() const noexcept { return item_; }

private:
    ur::Reference<Item> item_;
};

/// A new array of these elements; items are shared, not copied.
[[nodiscard]] inline ur::Reference<Array> array(std::initializer_list<Value> elements) {
    auto result = ur::make<Array>();
    result->array().reserve(elements.size());
    for (Value const& element : elements) result->insert(element.item());
    return result;
}

/// A new dictionary of these entries, without null values: `dictionary({{"name", "desk"}, {"size", 1.5}, {"at", {1, 2,
/// 3}}})`. The last value of a repeated key stays.
[[nodiscard]] inline ur::Reference<Dictionary> dictionary(
    std::initializer_list<std::pair<urString::CString, Value>> members) {
    auto result = ur::make<Dictionary>();
    for (auto const& [key, value] : members) {
        if (value.item()) result->insert(key, value.item());
    }
    return result;
}

inline Value::Value(std::initializer_list<Value> elements) : item_(array(elements)) {}

/// The value of an item, or `fallback` when it is null or of another shape.
template <class T>
[[nodiscard]] T valueOf(ur::Reference<Item const> const& item, T fallback = T()) {
    static_assert(Shaped<T>,
                  "no item shape of this type: include plst/convert.h or plst/containers.h, or list its members "
                  "(foundation/ur/describe.h)");
    if (hasShape<T>(item)) convert(fallback, item);
    return fallback;
}

/// The value under a key, or `fallback` if none has that shape: `get<double>(settings, "size", 1.0)`.
template <class T>
[[nodiscard]] T get(ur::Reference<Dictionary const> const& dictionary, std::string_view key, T fallback = T()) {
    if (!dictionary) return fallback;
    auto const member = dictionary->dictionary().find(key);
    return member == dictionary->dictionary().end() ? fallback : valueOf<T>(member->second, std::move(fallback));
}

}  // namespace nxPLST
