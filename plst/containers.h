// Containers, enumerations and structures as items, and back.
//
// A vector or array of values is an array of their items, a map from texts a dictionary, an optional its value or null.
// What foundation/ur/describe.h describes is one too: a named enumeration is the name, a structure that lists its
// members a dictionary of them. From an item of another shape nothing is read, as in plst/convert.h; an array may be
// longer than a std::array, and a dictionary has all members of a structure but optional ones, and may have more. A
// value without a name, and whatever contains a value without item form, has no item form and becomes null.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation/ur/describe.h"
#include "plst/shape.h"

namespace nxPLST {

namespace impl {

/// Null for items that are not containers of this kind.
template <class Container>
Container const* containerIn(ur::Reference<Item const> const& item, Type type) {
    return item && item->type() == type ? static_cast<Container const*>(item.get()) : nullptr;
}

template <class T>
concept TextKey = std::same_as<T, std::string> || std::same_as<T, urString::CString>;

template <class Values>
void convertElements(ur::Reference<Item>& out, Values const& values) {
    auto elements = ur::make<Array>();
    out = nullptr;
    for (auto const& value : values) {
        if (!elements->insert(value)) return;
    }
    out = std::move(elements);
}

}  // namespace impl

template <Shaped T>
struct Shape<std::vector<T>> {
    static bool matches(ur::Reference<Item const> const& item) {
        auto const* const elements = impl::containerIn<Array>(item, ArrayType);
        if (!elements) return false;
        for (auto const& element : elements->array()) {
            if (!hasShape<T>(element)) return false;
        }
        return true;
    }
};
template <Shaped T, std::size_t size>
struct Shape<std::array<T, size>> {
    static bool matches(ur::Reference<Item const> const& item) {
        auto const* const elements = impl::containerIn<Array>(item, ArrayType);
        if (!elements || elements->array().size() < size) return false;
        for (std::size_t i = 0; i < size; ++i) {
            if (!hasShape<T>(elements->array()[i])) return false;
        }
        return true;
    }
};
template <Shaped T>
struct Shape<std::optional<T>> {
    static bool matches(ur::Reference<Item const> const& item) { return !item || hasShape<T>(item); }
};
template <impl::TextKey Key, Shaped T, class Less>
struct Shape<std::map<Key, T, Less>> {
    static bool matches(ur::Reference<Item const> const& item) {
        auto const* const members = impl::containerIn<Dictionary>(item, DictionaryType);
        if (!members) return false;
        for (auto const& [key, value] : members->dictionary()) {
            if (!hasShape<T>(value)) return false;
        }
        return true;
    }
};
template <ur::NamedEnum T>
struct Shape<T> {
    static bool matches(ur::Reference<Item const> const& item) { return valueOf(item).has_value(); }
    static std::optional<T> valueOf(ur::Reference<Item const> const& item) {
        if (!item || item->type() != StringType) return std::nullopt;
        return ur::valueNamed<T>(static_cast<String const&>(*item).value());
    }
};
template <ur::ListsMembers T>
struct Shape<T> {
    static bool matches(ur::Reference<Item const> const& item) {
        auto const* const members = impl::containerIn<Dictionary>(item, DictionaryType);
        if (!members) return false;
        static_assert(std::default_initializable<T>, "a structure that lists its members has a default constructor");
        T any{};
        bool fits = true;
        ur::visitMembers(any, [&]<class M>(char const* name, M&) {
            static_assert(Shaped<M>,
                          "no item shape of a listed member: include plst/convert.h or plst/containers.h, or list its "
                          "members or names (foundation/ur/describe.h)");
            fits = fits && hasShape<M>(members->find(name));
        });
        return fits;
    }
};

template <Shaped T>
void convert(ur::Reference<Item>& out, std::vector<T> const& values) {
    impl::convertElements(out, values);
}
template <Shaped T>
void convert(std::vector<T>& out, ur::Reference<Item const> item) {
    if (!hasShape<std::vector<T>>(item)) return;
    auto const& elements = static_cast<Array const&>(*item).array();
    std::vector<T> read(elements.size());
    for (std::size_t i = 0; i < elements.size(); ++i) {
        T value{};
        convert(value, elements[i]);
        read[i] = std::move(value);
    }
    out = std::move(read);
}

template <Shaped T, std::size_t size>
void convert(ur::Reference<Item>& out, std::array<T, size> const& values) {
    impl::convertElements(out, values);
}
template <Shaped T, std::size_t size>
void convert(std::array<T, size>& out, ur::Reference<Item const> item) {
    if (!hasShape<std::array<T, size>>(item)) return;
    for (std::size_t i = 0; i < size; ++i) convert(out[i], static_cast<Array const&>(*item).array()[i]);
}

template <Shaped T>
void convert(ur::Reference<Item>& out, std::optional<T> const& value) {
    out = value ? impl::converted(*value) : nullptr;
}
template <Shaped T>
void convert(std::optional<T>& out, ur::Reference<Item const> item) {
    if (!item) return out.reset();
    if (hasShape<T>(item)) convert(out.emplace(), std::move(item));
}

template <impl::TextKey Key, Shaped T, class Less>
void convert(ur::Reference<Item>& out, std::map<Key, T, Less> const& values) {
    auto members = ur::make<Dictionary>();
    out = nullptr;
    for (auto const& [key, value] : values) {
        if (!members->insert(key, value)) return;
    }
    out = std::move(members);
}
template <impl::TextKey Key, Shaped T, class Less>
void convert(std::map<Key, T, Less>& out, ur::Reference<Item const> item) {
    if (!hasShape<std::map<Key, T, Less>>(item)) return;
    std::map<Key, T, Less> read;
    for (auto const& [key, member] : static_cast<Dictionary const&>(*item).dictionary())
        convert(read[Key(key.view())], member);
    out = std::move(read);
}

/// A value without a name becomes null.
template <ur::NamedEnum T>
void convert(ur::Reference<Item>& out, T value) {
    std::string_view const name = ur::nameOf(value);
    out = name.empty() ? nullptr : ur::make<String>(name);
}
template <ur::NamedEnum T>
void convert(T& out, ur::Reference<Item const> item) {
    if (auto const value = Shape<T>::valueOf(item)) out = *value;
}

template <ur::ListsMembers T>
void convert(ur::Reference<Item>& out, T const& value) {
    auto members = ur::make<Dictionary>();
    bool hasItemForm = true;
    ur::listConstMembers(value, [&](char const* name, auto const& member) {
        ur::Reference<Item> item;
        hasItemForm = hasItemForm && impl::tryConvert(item, member);
        if (item) members->insert(name, std::move(item));
    });
    out = hasItemForm ? ur::Reference<Item>(std::move(members)) : nullptr;
}
template <ur::ListsMembers T>
void convert(T& out, ur::Reference<Item const> item) {
    if (!hasShape<T>(item)) return;
    ur::visitMembers(out, [&]<class M>(char const* name, M& member) {
        if constexpr (Shaped<M>) convert(member, static_cast<Dictionary const&>(*item).find(name));
    });
}

}  // namespace nxPLST
