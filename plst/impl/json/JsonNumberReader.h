// JSON numbers as doubles, correctly rounded and in no locale.
#pragma once

#include <cstdint>
#include <limits>

#include "plst/impl/json/decimal.h"

namespace nxPLST::impl {

/// The double nearest to the decimal number that begins at `text`, and its end. A number that is too small for a
/// double gives a zero with its sign; null when it is too large. Requires: a number as JSON writes it.
char const* readReal(char const* text, char const* end, double& value) noexcept;

/// Whole numbers go through a signed 64-bit integer, so that -0 is 0. False when [text, end) lies outside of
/// -2^63+1 to 2^63-1. Requires: a number as JSON writes it, without a point and an exponent.
bool readInteger(char const* text, char const* end, double& value) noexcept;

/// The number at `text` and its end; null when JSON has no such number or `readInteger` or `readReal` refuses it.
/// An exponent without digits is not part of the number. Requires: a minus sign or a digit at `text`, and before
/// `end` a byte that is no part of a number.
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
