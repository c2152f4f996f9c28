// The saved forms of numbers, of references to transaction objects and of lists of pointers to them.
#pragma once

#include <cstdint>
#include <type_traits>

#include "foundation/nxTXN/Object.h"
#include "foundation/nxTXN/Serializer.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/containers.h"

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

/// A list of objects that it does not own: a 32-bit count, then the pointers.
template <TransactionObject T>
void write(Writer& writer, ur::vector<T*> const& list) {
    auto const count = static_cast<std::uint32_t>(list.size());
    writer.writeData(&count, sizeof count);
    for (T const* object : list) writer.writePtr(static_cast<Object const*>(object));
}
template <TransactionObject T>
void read(Reader& reader, ur::vector<T*>& list) {
    std::uint32_t count = 0;
    reader.readData(&count, sizeof count);
    list.clear();
    while (count-- > 0) list.push_back(static_cast<T*>(static_cast<Object*>(reader.readPtr())));
}
template <TransactionObject T>
void clear(Clear& /*cleared*/, ur::vector<T*>& list) {
    list.clear();
}

}  // namespace nxTXN
