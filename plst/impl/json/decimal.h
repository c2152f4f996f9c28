// Parses decimal digits and divides by powers of ten with correct rounding.
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

/// The number of eight digit values, the first one in the lowest byte: combines pairs, then fours, then all.
inline std::uint64_t valueOfEight(std::uint64_t digits) noexcept {
    digits = digits * (1 + (10 << 8)) >> 8;
    digits = (digits & 0x00FF00FF'00FF00FF) * (1 + (100 << 16)) >> 16;
    return (digits & 0x0000FFFF'0000FFFF) * (1 + (std::uint64_t(10000) << 32)) >> 32;
}

/// A power of five shifted so that its top bit is set, and the reciprocal that replaces a division by it.
struct Divisor {
    std::uint64_t value = 0;
    std::uint64_t reciprocal = 0;  // (2^128-1)/value - 2^64
    int shift = 0;
};

inline constexpr int mostTenths = 27;  // 5^27 still fits 64 bits

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

/// Continues `value` with the digits in [text, end), as far as its bits suffice; returns the position after them.
template <class Number>
inline char const* takeDigits(char const* text, char const* end, Number& value) noexcept {
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
    for (; text != end && isDigit(*text); ++text) value = value * 10 + static_cast<unsigned>(*text - '0');
    return text;
}

namespace decimal {

/// The double nearest to (high·2^64+low)·2^exponent/10^tenths, ties to even. Requires: high from 2^61 to below 2^62,
/// and tenths from 0 to mostTenths.
inline double quotient(std::uint64_t high, std::uint64_t low, int exponent, int tenths) noexcept {
    Divisor const& by = divisors[tenths];
    // Möller and Granlund, "Improved division by invariant integers".
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
    // At least 61 bits, so the lowest can represent all following bits when the conversion rounds to 53.
    auto const sticky = static_cast<std::int64_t>(whole | (rest != 0));
    int const scale = exponent + by.shift - tenths;
    return static_cast<double>(sticky) * std::bit_cast<double>(std::uint64_t(1023 + scale) << 52);
}

}  // namespace decimal

/// The double nearest to digits/10^tenths, ties to even. Requires: 0 <= tenths <= mostTenths.
inline double quotient(std::uint64_t digits, int tenths) noexcept {
    if (digits == 0) return 0;
    int const shift = std::countl_zero(digits);
    std::uint64_t const top = digits << shift;
    return decimal::quotient(top >> 2, top << 62, -62 - shift, tenths);
}

/// The same. Requires: digits below 2^126.
inline double wideQuotient(Wide digits, int tenths) noexcept {
    auto const high = static_cast<std::uint64_t>(digits >> 64);
    if (high == 0) return quotient(static_cast<std::uint64_t>(digits), tenths);
    int const shift = std::countl_zero(high) - 2;
    digits <<= shift;
    return decimal::quotient(static_cast<std::uint64_t>(digits >> 64), static_cast<std::uint64_t>(digits), -shift,
                             tenths);
}

}  // namespace nxPLST::impl
