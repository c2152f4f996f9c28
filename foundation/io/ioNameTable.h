// Remembers the short texts that a file named recently.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// A ring buffer of short texts, equal in writer and reader: each new text takes the next place.
class ioNameTable {
public:
    static constexpr std::size_t places = 255;
    static constexpr std::size_t longestName = 31;

    /// Stores `name` in the next place and returns that place. Requires: not longer than `longestName`.
    std::size_t remember(std::string_view name) noexcept {
        std::size_t const place = next_;
        name.copy(names_[place].text.data(), name.size());
        names_[place].size = static_cast<std::uint8_t>(name.size());
        next_ = (place + 1) % places;
        used_ = std::max(used_, place + 1);
        return place;
    }
    /// Whether that place holds a text.
    [[nodiscard]] bool knows(std::size_t place) const noexcept { return place < used_; }
    /// Requires: `knows(place)`.
    [[nodiscard]] std::string_view at(std::size_t place) const noexcept {
        return {names_[place].text.data(), names_[place].size};
    }

private:
    struct Name {
        std::array<char, longestName> text;
        std::uint8_t size;
    };

    std::array<Name, places> names_;
    std::size_t used_ = 0;
    std::size_t next_ = 0;
};
