// Reads JSON numbers as doubles, correctly rounded and independent of the locale.
#pragma once

#include <cstdint>
#include <limits>

#include "plst/impl/json/decimal.h"

namespace nxPLST::impl {

/// Reads the decimal number at `text` as the nearest double and returns its end. Numbers too small for a double become
/// a zero with their sign; null when the number is too large. Requires: a valid JSON number.
char const* readReal(char const* text, char const* end, double& value) noexcept;

/// Reads whole numbers through a signed 64-bit integer, so that -0 becomes 0. False when [text, end) is outside -2^63+1
/// to 2^63-1. Requires: a valid JSON number without a point or exponent.
bool readInteger(char const* text, char const* end, double& value) noexcept;

/// Reads the number at `text` and returns its end; null when it is not a JSON number or `readInteger` or `readReal`
/// refuses it. An exponent without digits is not part of the number. Requires: a minus sign or a digit at `text`, and
/// before `end` a byte that is not part of a number.
inline char const* readNumber(char const* text, char const* end, double& value) noexcept {
    constexpr int mostWhole = std::numeric_limits<std::int64_t>::digits10;
    constexpr int mostDigits = std::numeric_limits<std::uint64_t>::digits10;
    char const* const start = text;
    bool const negative = *text == '-';
    char const* const first = text += negative;
    std::uint64_t digits = 0;
    for (; isDigit(*text); ++text) digits = digits * 10 + static_cast<unsigned>(*text - '0');
    auto const count = text - first;
    bool const belowOne = *first == '0';
    if (count == 0 || (belowOne && count > 1)) [[unlikely]]
        return nullptr;
    if (*text == '.') {
        char const* const fraction = ++text;
        while (belowOne && *text == '0') ++text;
        char const* const significant = belowOne ? text : first;
        text = takeDigits(text, end, digits);
        auto const tenths = text - fraction;
        if (tenths == 0) return nullptr;
        bool const isShort = text - significant <= mostDigits + !belowOne && tenths <= decimal::mostTenths;
        if (!isShort || *text == 'e' || *text == 'E') return readReal(start, end, value);
        double const size = quotient(digits, static_cast<int>(tenths));
        value = negative ? -size : size;
        return text;
    }
    if (*text == 'e' || *text == 'E') return readReal(start, end, value);
    if (count > mostWhole) return readInteger(start, text, value) ? text : nullptr;
    auto const whole = static_cast<std::int64_t>(digits);
    value = static_cast<double>(negative ? -whole : whole);
    return text;
}

}  // namespace nxPLST::impl
