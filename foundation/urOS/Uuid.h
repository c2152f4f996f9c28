// A universally unique identifier.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace urOS {

/// Sixteen bytes that identify one thing in the world. A value without padding; its bytes may be stored as they are and
/// passed back to the constructor as four words.
class NX_API Uuid {
public:
    /// The nil identifier, all zero.
    constexpr Uuid() noexcept = default;
    /// The words in the order of the text form: `a` is its first eight digits.
    constexpr Uuid(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) noexcept : words_{a, b, c, d} {}

    /// Becomes a new, unique random identifier (version 4).
    void generate();
    /// Parses the format of `asString`, in upper or lower case. False, and unchanged, for anything else.
    [[nodiscard]] bool parse(std::string_view text) noexcept;
    /// Lower-case digits in groups of 8, 4, 4, 4 and 12.
    [[nodiscard]] urString::CString asString() const;

    [[nodiscard]] bool isNil() const noexcept { return *this == Uuid(); }
    [[nodiscard]] std::array<std::uint32_t, 4> const& words() const noexcept { return words_; }

    /// Negative, 0 or positive, in the order of the text forms.
    [[nodiscard]] int compare(Uuid const& other) const noexcept;
    friend bool operator==(Uuid const& a, Uuid const& b) noexcept = default;
    friend std::strong_ordering operator<=>(Uuid const& a, Uuid const& b) noexcept { return a.words_ <=> b.words_; }

private:
    std::array<std::uint32_t, 4> words_{};
};

static_assert(sizeof(Uuid) == 16);

}  // namespace urOS

namespace urOS {

/// For tables of identifiers that others choose, as in files: `std::unordered_map<Uuid, T, UuidHash>`. Each table has a
/// secret of its own, so that nobody can choose many identifiers that collide. Do not `merge` two such tables.
class NX_API UuidHash {
public:
    UuidHash();
    [[nodiscard]] std::size_t operator()(Uuid const& id) const noexcept;

private:
    std::uint64_t secret_;
};

}  // namespace urOS

template <>
struct std::hash<urOS::Uuid> {
    std::size_t operator()(urOS::Uuid const& id) const noexcept {
        auto const& words = id.words();
        return (static_cast<std::size_t>(words[0]) << 32 | words[1]) ^
               (static_cast<std::size_t>(words[2]) << 32 | words[3]);
    }
};
