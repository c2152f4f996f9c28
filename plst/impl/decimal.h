// Decimal digits as numbers, and their correctly rounded division by powers of ten.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace nxPLST::impl {

__extension__ typedef unsigned __int128 Wide;

[[nodiscard]] inline bool isDigit(char c) noexcept { return static_cast<unsigned char>(c - '0') < 10; }

namespace decimal {

inline constexpr std::uint64_t smallTenTo[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

/// The number that eight digit values make, the first one in the lowest byte: pairs, then fours, then all.
inline std::uint64_t valueOfEight(std::uint64_t digits) noexcept {
    digits = digits * (1 + (10 << 8)) >> 8;
    digits = (digits & 0x00FF00FF'00FF00FF) * (1 + (100 << 16)) >> 16;
    return (digits & 0x0000FFFF'0000FFFF) * (1 + (std::uint64_t(10000) << 32)) >> 32;
}

/// A power of five shifted so that its top bit is set, and what divides by it without a division.
struct Divisor {
    std::uint64_t value = 0;
    std::uint64_t reciprocal = 0;  // (2^128-1)/value - 2^64
    int shift = 0;
};

inline constexpr int mostTenths = 18;  // as many as behind the first of nineteen digits

inline constexpr auto divisors = [] {
    std::array<Divisor, mostTenths + 1> result;
    std::uint64_t power = 1;
    for (Divisor& divisor : result) {
        divisor.shift = std::countl_zero(power);
        divisor.value = power << divisor.shift;
        divisor.reciprocal = static_cast<std::uint64_t>(~Wide(0) / divisor.value);
        power *= 5;
    }
    return result;
}();

}  // namespace decimal

/// Continues `value` with the digits at `text`, modulo 2^64, and gives the first byte that is none. Requires: there
/// is one before `end`.
inline char const* takeDigits(char const* text, char const* end, std::uint64_t& value) noexcept {
    using namespace decimal;
    while (std::endian::native == std::endian::little && end - text >= 8) [[likely]] {
            std::uint64_t word;
            std::memcpy(&word, text, sizeof word);
            word ^= 0x30303030'30303030;
            std::uint64_t const others =
                (((word & 0x7F7F7F7F'7F7F7F7F) + 0x76767676'76767676) | word) & 0x80808080'80808080;
            int const count = std::countr_zero(others) / 8;
            if (others == 0) {
                value = value * smallTenTo[8] + valueOfEight(word);
                text += 8;
                continue;
            }
            value = value * smallTenTo[count] + valueOfEight(word << 1 << (63 - 8 * count));
            return text + count;
        }
    for (; isDigit(*text); ++text) value = value * 10 + static_cast<std::uint64_t>(*text - '0');
    return text;
}

/// The double nearest to digits/10^tenths, a tie to the even one. Requires: 0 <= tenths <= mostTenths.
inline double quotient(std::uint64_t digits, int tenths) noexcept {
    if (digits == 0) return 0;
    decimal::Divisor const& by = decimal::divisors[tenths];
    int const shift = std::countl_zero(digits);
    std::uint64_t const top = digits << shift;
    // top·2^62 divided by the reciprocal (Möller and Granlund, "Improved division by invariant integers").
    std::uint64_t const high = top >> 2;
    std::uint64_t const low = top << 62;
    Wide const estimate = Wide(by.reciprocal) * high + (Wide(high) << 64 | low);
    std::uint64_t whole = static_cast<std::uint64_t>(estimate >> 64) + 1;
    std::uint64_t rest = low - whole * by.value;
    bool const tooLarge = rest > static_cast<std::uint64_t>(estimate);
    whole -= tooLarge;
    rest += tooLarge ? by.value : 0;
    if (rest >= by.value) [[unlikely]] {
        ++whole;
        rest -= by.value;
    }
    // At least 61 bits, so that the lowest may stand for all that follow when the conversion rounds to 53.
    auto const sticky = static_cast<std::int64_t>(whole | (rest != 0));
    int const exponent = by.shift - shift - tenths - 62;
    return static_cast<double>(sticky) * std::bit_cast<double>(std::uint64_t(1023 + exponent) << 52);
}

}  // namespace nxPLST::impl
