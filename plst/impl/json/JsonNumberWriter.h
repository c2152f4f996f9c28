// Writes numbers as JSON text, in the two precisions of the writers.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace nxPLST::impl {

// Results hold digit values, the first one in the lowest byte. The numbers are split into halves, pairs and single
// digits, in all lanes of a word at once. With q = v/n, (v << s) - q·((n << s) - 1) is the remainder above q.

[[nodiscard]] inline std::uint64_t fourDigits(std::uint64_t value) noexcept {
    std::uint64_t const hundreds = (value * 10486) >> 20;
    std::uint64_t const pairs = (value << 16) - hundreds * ((100 << 16) - 1);
    std::uint64_t const tens = ((pairs * 103) >> 10) & 0x000F000F;
    return (pairs << 8) - tens * ((10 << 8) - 1);
}

/// The lowest number that `eightDigits` cannot split.
inline constexpr std::uint64_t eightDigitLimit = 100000000;

[[nodiscard]] inline std::uint64_t eightDigits(std::uint64_t value) noexcept {
    std::uint64_t const halves = (value << 32) - value / 10000 * ((std::uint64_t(10000) << 32) - 1);
    std::uint64_t const hundreds = ((halves * 10486) >> 20) & 0x0000007F'0000007F;
    std::uint64_t const pairs = (halves << 16) - hundreds * ((100 << 16) - 1);
    std::uint64_t const tens = ((pairs * 103) >> 10) & 0x000F000F'000F000F;
    return (pairs << 8) - tens * ((10 << 8) - 1);
}

/// Eight digits of each of two numbers.
[[nodiscard]] inline std::pair<std::uint64_t, std::uint64_t> twiceEightDigits(std::uint64_t first,
                                                                              std::uint64_t second) noexcept {
#if defined(__SSE2__)
    __m128i const values = _mm_set_epi64x(static_cast<long long>(second), static_cast<long long>(first));
    __m128i const upper = _mm_srli_epi64(_mm_mul_epu32(values, _mm_set1_epi64x(0xD1B71759)), 45);  // by 10000
    __m128i const lower = _mm_sub_epi32(values, _mm_mul_epu32(upper, _mm_set1_epi64x(10000)));
    __m128i const halves = _mm_or_si128(upper, _mm_slli_epi64(lower, 32));
    __m128i const hundreds = _mm_srli_epi16(_mm_mulhi_epu16(halves, _mm_set1_epi16(10486)), 4);
    __m128i const below = _mm_sub_epi16(halves, _mm_mullo_epi16(hundreds, _mm_set1_epi16(100)));
    __m128i const pairs = _mm_or_si128(hundreds, _mm_slli_epi32(below, 16));
    __m128i const tens = _mm_mulhi_epu16(pairs, _mm_set1_epi16(6554));
    __m128i const ones = _mm_sub_epi16(pairs, _mm_mullo_epi16(tens, _mm_set1_epi16(10)));
    __m128i const digits = _mm_or_si128(tens, _mm_slli_epi16(ones, 8));
    return {static_cast<std::uint64_t>(_mm_cvtsi128_si64(digits)),
            static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(digits, digits)))};
#else
    return {eightDigits(first), eightDigits(second)};
#endif
}

/// Writes digit values as characters, the lowest byte first.
template <class Word>
void storeDigits(char* to, std::uint64_t digits) noexcept {
    auto word = static_cast<Word>(digits | 0x30303030'30303030);
    if constexpr (std::endian::native == std::endian::big) {
        word = static_cast<Word>(__builtin_bswap64(word) >> (64 - 8 * sizeof word));
    }
    std::memcpy(to, &word, sizeof word);
}

/// The space that either function may need from `to` on, including its working space.
inline constexpr std::size_t numberRoom = 48;

/// Writes what "%g" prints in the C locale, NaN and infinities included; returns the end of the text.
char* writeShortNumber(char* to, double value) noexcept;

/// Writes a number below `eightDigitLimit`.
inline char* writeShortWhole(char* to, std::uint64_t value) noexcept {
    std::uint64_t const digits = eightDigits(value);
    int const leadingZeros = std::countr_zero(digits | std::uint64_t(1) << 56) / 8;
    storeDigits<std::uint64_t>(to, digits >> (8 * leadingZeros));
    return to + 8 - leadingZeros;
}

/// `writeExactNumber` for any number.
char* writeAnyExactNumber(char* to, double value) noexcept;

/// Writes what "%.20g" prints in the C locale; returns the end of the text. Requires: a finite value.
inline char* writeExactNumber(char* to, double value) noexcept {
    constexpr auto limit = static_cast<double>(eightDigitLimit);
    // As integers, the bits of negative values are above those of the limit.
    if (std::bit_cast<std::uint64_t>(value) < std::bit_cast<std::uint64_t>(limit)) {
        auto const whole = static_cast<std::int32_t>(value);
        if (static_cast<double>(whole) == value) return writeShortWhole(to, static_cast<std::uint64_t>(whole));
    }
    return writeAnyExactNumber(to, value);
}

}  // namespace nxPLST::impl
