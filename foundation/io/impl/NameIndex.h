// Finds a text among those that a file named recently.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "foundation/io/ioNameTable.h"

namespace ioImpl {

/// Finds the place of a text. A later text with the same hash can hide an earlier one, which is then only named again.
class NameIndex {
public:
    static constexpr std::size_t none = ioNameTable::places;

    [[nodiscard]] std::size_t find(std::string_view name) const noexcept {
        std::size_t const place = findDigest(name);
        return place == none || table_.at(place) == name ? place : none;
    }
    /// The same without a function call: `none` for all texts longer than 16 bytes.
    [[nodiscard]] std::size_t findShort(std::string_view name) const noexcept {
        return name.size() <= digestedBytes ? findDigest(name) : none;
    }
    /// Requires: not longer than `ioNameTable::longestName`.
    void remember(std::string_view name) noexcept {
        Digest const digest = digestOf(name);
        std::size_t const place = table_.remember(name);
        digests_[place] = digest;
        placeOfSlot_[slotOf(digest)] = static_cast<std::uint8_t>(place);
    }

private:
    static constexpr std::size_t slots = 1024;
    static constexpr std::size_t digestedBytes = 16;

    /// The first and last bytes, which overlap in short names, and the size: all of a text of up to 16 bytes.
    struct Digest {
        std::uint64_t first = 0;
        std::uint64_t last = 0;
        std::size_t size = ioNameTable::longestName + 1;  // no name has this size

        friend bool operator==(Digest const& a, Digest const& b) noexcept = default;
    };

    template <class Word>
    [[nodiscard]] static std::uint64_t wordAt(char const* bytes) noexcept {
        Word word = 0;
        std::memcpy(&word, bytes, sizeof(word));
        return word;
    }
    [[nodiscard]] static Digest digestOf(std::string_view name) noexcept {
        char const* const begin = name.data();
        char const* const end = begin + name.size();
        if (name.size() >= 8) return {wordAt<std::uint64_t>(begin), wordAt<std::uint64_t>(end - 8), name.size()};
        if (name.size() >= 4) return {wordAt<std::uint32_t>(begin), wordAt<std::uint32_t>(end - 4), name.size()};
        if (name.empty()) return {0, 0, 0};
        auto const middle = wordAt<std::uint8_t>(begin + name.size() / 2);
        return {wordAt<std::uint8_t>(begin) << 16 | middle, wordAt<std::uint8_t>(end - 1), name.size()};
    }
    /// Changing this changes the bytes of files but not their meaning. The product's upper bits mix well.
    [[nodiscard]] static std::size_t slotOf(Digest const& digest) noexcept {
        std::uint64_t hash = digest.first << 16 ^ digest.last << 8;
        if (digest.size >= 4) hash = digest.first << 32 ^ digest.last;
        if (digest.size >= 8) hash = digest.first ^ digest.last * 3;
        return static_cast<std::size_t>((hash + digest.size) * 0x9E3779B97F4A7C15U >> 54);
    }

    [[nodiscard]] std::size_t findDigest(std::string_view name) const noexcept {
        Digest const digest = digestOf(name);
        std::size_t const place = placeOfSlot_[slotOf(digest)];
        return digests_[place] == digest ? place : none;
    }

    ioNameTable table_;
    std::array<Digest, ioNameTable::places> digests_;  ///< by place
    std::array<std::uint8_t, slots> placeOfSlot_{};
};

}  // namespace ioImpl
