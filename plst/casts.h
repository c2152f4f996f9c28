// Checked down-casts of items. They do not convert: a number is not a boolean.
#pragma once

#include <concepts>
#include <type_traits>

#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"

namespace nxPLST {

/// The same item as its own class; null when `item` is null or of another class.
NX_API ur::Reference<Array> asArray(ur::Reference<Item> item);
NX_API ur::Reference<Array const> asArray(ur::Reference<Item const> item);
NX_API ur::Reference<Bool> asBool(ur::Reference<Item> item);
NX_API ur::Reference<Bool const> asBool(ur::Reference<Item const> item);
NX_API ur::Reference<Dictionary> asDictionary(ur::Reference<Item> item);
NX_API ur::Reference<Dictionary const> asDictionary(ur::Reference<Item const> item);
NX_API ur::Reference<Double> asDouble(ur::Reference<Item> item);
NX_API ur::Reference<Double const> asDouble(ur::Reference<Item const> item);
NX_API ur::Reference<String> asString(ur::Reference<Item> item);
NX_API ur::Reference<String const> asString(ur::Reference<Item const> item);

namespace impl {

template <class T>
concept ItemReference = std::convertible_to<T const&, ur::Reference<Item const>>;
template <ItemReference T>
using PlainItem = std::conditional_t<std::convertible_to<T const&, ur::Reference<Item>>, Item, Item const>;

}  // namespace impl

// The same for references to items of one class, for new items and for null.

template <impl::ItemReference T>
auto asArray(T const& item) {
    return asArray(ur::Reference<impl::PlainItem<T>>(item));
}
template <impl::ItemReference T>
auto asBool(T const& item) {
    return asBool(ur::Reference<impl::PlainItem<T>>(item));
}
template <impl::ItemReference T>
auto asDictionary(T const& item) {
    return asDictionary(ur::Reference<impl::PlainItem<T>>(item));
}
template <impl::ItemReference T>
auto asDouble(T const& item) {
    return asDouble(ur::Reference<impl::PlainItem<T>>(item));
}
template <impl::ItemReference T>
auto asString(T const& item) {
    return asString(ur::Reference<impl::PlainItem<T>>(item));
}

}  // namespace nxPLST
