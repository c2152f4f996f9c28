// Numbers as JSON text, in the two precisions that the writers use.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "plst/impl/digits.h"

namespace nxPLST::impl {

/// Room that either function may need behind `to`, its working space included.
inline constexpr std::size_t numberRoom = 48;

/// Writes what "%g" prints in the C locale, NaN and infinities included; gives the end of the text.
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

/// Writes what "%.20g" prints in the C locale; gives the end of the text. Requires: a finite value.
inline char* writeExactNumber(char* to, double value) noexcept {
    constexpr auto limit = static_cast<double>(eightDigitLimit);
    // As numbers, the bits of what is negative lie above those of the limit.
    if (std::bit_cast<std::uint64_t>(value) < std::bit_cast<std::uint64_t>(limit)) {
        auto const whole = static_cast<std::int32_t>(value);
        if (static_cast<double>(whole) == value) return writeShortWhole(to, static_cast<std::uint64_t>(whole));
    }
    return writeAnyExactNumber(to, value);
}

/// Whether what "%.20g" prints is read as the same number. Requires: a finite value.
inline bool exactNumberReadsBack(double value) noexcept {
    double const size = value < 0 ? -value : value;
    bool const isNegativeZero = std::bit_cast<std::uint64_t>(value) == std::uint64_t(1) << 63;
    return !isNegativeZero && (size < 0x1p63 || size >= 1e20);
}

/// Writes one of the others in the shortest form that is; gives the end of the text.
char* writeReadableNumber(char* to, double value) noexcept;

}  // namespace nxPLST::impl
