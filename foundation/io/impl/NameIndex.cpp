// Finds a text among those that a file has named lately.
#include "foundation/io/impl/NameIndex.h"

#include <cstring>

namespace ioImpl {
namespace {

template <class Word>
std::uint64_t wordAt(char const* bytes) noexcept {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

}  // namespace

std::size_t NameIndex::slotOf(std::string_view name) noexcept {
    // The first and the last bytes, which overlap in short names, and the size; the product's upper bits mix them.
    char const* const end = name.data() + name.size();
    std::uint64_t hash = name.size();
    if (name.size() >= 8) {
        hash += wordAt<std::uint64_t>(name.data()) ^ wordAt<std::uint64_t>(end - 8) * 3;
    } else if (name.size() >= 4) {
        hash += wordAt<std::uint32_t>(name.data()) << 32 ^ wordAt<std::uint32_t>(end - 4);
    } else if (!name.empty()) {
        hash += wordAt<std::uint8_t>(name.data()) << 32 ^ wordAt<std::uint8_t>(end - 1) << 8;
        hash ^= wordAt<std::uint8_t>(name.data() + name.size() / 2) << 16;
    }
    return static_cast<std::size_t>(hash * 0x9E3779B97F4A7C15U >> 54);
}

std::size_t NameIndex::find(std::string_view name) const noexcept {
    std::size_t const place = placeOfSlot_[slotOf(name)];
    return table_.knows(place) && table_.at(place) == name ? place : none;
}

void NameIndex::remember(std::string_view name) noexcept {
    placeOfSlot_[slotOf(name)] = static_cast<std::uint8_t>(table_.remember(name));
}

}  // namespace ioImpl
