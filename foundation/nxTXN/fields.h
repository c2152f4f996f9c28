// The saved forms of numbers, texts, references to transaction objects, described structures, and containers of these.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation/nxTXN/Object.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/describe.h"

namespace nxTXN {

template <class T>
concept Scalar = std::is_arithmetic_v<T> || std::is_enum_v<T>;

template <class T>
concept TransactionObject = std::is_base_of_v<Object, T>;

template <Scalar T>
void write(Writer& writer, T const& value) {
    writer.writeData(&value, sizeof value);
}
template <Scalar T>
void read(Reader& reader, T& value) {
    reader.readData(&value, sizeof value);
}

template <TransactionObject T>
void write(Writer& writer, ur::Reference<T> const& reference) {
    writer.writePtr(static_cast<Object const*>(reference.get()));
}
template <TransactionObject T>
void read(Reader& reader, ur::Reference<T>& reference) {
    reference.reset(static_cast<T*>(static_cast<Object*>(reader.readPtr())));
}
template <TransactionObject T>
void clear(Clear& cleared, ur::Reference<T>& reference) {
    cleared.release(reference);
}

inline void write(Writer& writer, std::string const& text) {
    auto const size = static_cast<std::uint32_t>(text.size());
    writer.writeData(&size, sizeof size);
    writer.writeData(text.data(), size);
}
inline void read(Reader& reader, std::string& text) {
    std::uint32_t size = 0;
    reader.readData(&size, sizeof size);
    text.resize(size);
    reader.readData(text.data(), size);
}

/// An object that the record does not own.
template <TransactionObject T>
void write(Writer& writer, T* const& object) {
    writer.writePtr(static_cast<Object const*>(object));
}
template <TransactionObject T>
void read(Reader& reader, T*& object) {
    object = static_cast<T*>(static_cast<Object*>(reader.readPtr()));
}

template <TransactionObject T>
void clear(Clear& /*cleared*/, T*& object) {
    object = nullptr;
}

/// A structure that lists its members: saves each member.
template <ur::ListsMembers T>
void write(Writer& writer, T const& value) {
    ur::listConstMembers(value, [&writer](char const*, auto const& member) { impl::writeField(writer, member); });
}
template <ur::ListsMembers T>
void read(Reader& reader, T& value) {
    ur::visitMembers(value, [&reader](char const*, auto& member) { impl::readField(reader, member); });
}
template <ur::ListsMembers T>
void clear(Clear& cleared, T& value) {
    ur::visitMembers(value, [&cleared](char const*, auto& member) {
        if constexpr (requires { clear(cleared, member); }) clear(cleared, member);
    });
}

/// Saves whether there is a value, then the value.
template <class T>
void write(Writer& writer, std::optional<T> const& value) {
    impl::writeField(writer, value.has_value());
    if (value) impl::writeField(writer, *value);
}
template <class T>
void read(Reader& reader, std::optional<T>& value) {
    bool hasValue = false;
    impl::readField(reader, hasValue);
    if (!hasValue) return value.reset();
    impl::readField(reader, value.emplace());
}
template <class T>
requires requires(Clear& cleared, T& value) { clear(cleared, value); }
void clear(Clear& cleared, std::optional<T>& value) {
    if (value) clear(cleared, *value);
    value.reset();
}

/// A vector of whatever has a saved form: a 32-bit count, then the elements. It owns what it counts references of, and
/// not what it points to.
template <class T>
void write(Writer& writer, std::vector<T> const& elements) {
    auto const count = static_cast<std::uint32_t>(elements.size());
    writer.writeData(&count, sizeof count);
    for (auto const& element : elements) impl::writeField(writer, static_cast<T const&>(element));
}
template <class T>
void read(Reader& reader, std::vector<T>& elements) {
    std::uint32_t count = 0;
    reader.readData(&count, sizeof count);
    elements.clear();
    elements.reserve(count);
    while (count-- > 0) {
        T element{};
        impl::readField(reader, element);
        elements.push_back(std::move(element));
    }
}
template <class T>
requires requires(Clear& cleared, T& element) { clear(cleared, element); }
void clear(Clear& cleared, std::vector<T>& elements) {
    for (T& element : elements) clear(cleared, element);
    elements.clear();
}

template <class T, std::size_t size>
void write(Writer& writer, std::array<T, size> const& elements) {
    for (T const& element : elements) impl::writeField(writer, element);
}
template <class T, std::size_t size>
void read(Reader& reader, std::array<T, size>& elements) {
    for (T& element : elements) impl::readField(reader, element);
}
template <class T, std::size_t size>
requires requires(Clear& cleared, T& element) { clear(cleared, element); }
void clear(Clear& cleared, std::array<T, size>& elements) {
    for (T& element : elements) clear(cleared, element);
}

/// A map: a 32-bit count, then keys and values.
template <class Key, class T, class Less>
void write(Writer& writer, std::map<Key, T, Less> const& map) {
    impl::writeField(writer, static_cast<std::uint32_t>(map.size()));
    for (auto const& [key, value] : map) {
        impl::writeField(writer, key);
        impl::writeField(writer, value);
    }
}
template <class Key, class T, class Less>
void read(Reader& reader, std::map<Key, T, Less>& map) {
    std::uint32_t count = 0;
    impl::readField(reader, count);
    map.clear();
    while (count-- > 0) {
        Key key{};
        impl::readField(reader, key);
        impl::readField(reader, map.try_emplace(map.end(), std::move(key))->second);
    }
}
template <class Key, class T, class Less>
requires requires(Clear& cleared, T& value) { clear(cleared, value); }
void clear(Clear& cleared, std::map<Key, T, Less>& map) {
    for (auto& [key, value] : map) clear(cleared, value);
    map.clear();
}

}  // namespace nxTXN
