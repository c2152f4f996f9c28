// Reads numbers beyond the digits of an integer.
#include "plst/impl/json/JsonNumberReader.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace nxPLST::impl {
namespace {

/// Larger than any exponent that the digits of a text could compensate.
constexpr long hugeExponent = std::numeric_limits<long>::max() / 16;

/// Whether a number that no double approximates is too large rather than too small. Requires: it is not 0.
bool isLarge(char const* text, char const* end) {
    long magnitude = 0;  // of 0.d1d2d3…·10^magnitude with d1 not 0
    bool leading = true;
    bool fraction = false;
    for (; text != end && *text != 'e' && *text != 'E'; ++text) {
        fraction |= *text == '.';
        if (!isDigit(*text)) continue;
        leading &= *text == '0';
        if (leading == fraction) magnitude += leading ? -1 : 1;
    }
    if (text == end) return magnitude > 0;
    bool const negative = *++text == '-';
    if (!isDigit(*text)) ++text;
    long exponent = 0;
    for (; text != end; ++text) exponent = std::min(hugeExponent, exponent * 10 + (*text - '0'));
    return magnitude + (negative ? -exponent : exponent) > 0;
}

/// Reads a number without an exponent whose digits fit 126 bits, such as the strict writer's; otherwise null.
char const* readDecimal(char const* text, char const* end, double& value) {
    constexpr int mostDigits = 37;
    bool const negative = *text == '-';
    Wide digits = 0;
    char const* const first = text + negative;
    text = takeDigits(first, end, digits);
    if (text == end || *text != '.') return nullptr;
    char const* const fraction = text + 1;
    text = takeDigits(fraction, end, digits);
    auto const tenths = text - fraction;
    if (text - first > mostDigits + 1 || tenths > decimal::mostTenths) return nullptr;
    if (text != end && (*text == 'e' || *text == 'E')) return nullptr;
    double const size = wideQuotient(digits, static_cast<int>(tenths));
    value = negative ? -size : size;
    return text;
}

}  // namespace

char const* readReal(char const* text, char const* end, double& value) noexcept {
    if (char const* const stop = readDecimal(text, end, value)) return stop;
    auto const result = std::from_chars(text, end, value);
    if (result.ec != std::errc()) {
        if (isLarge(text, result.ptr)) return nullptr;
        value = std::copysign(0.0, *text == '-' ? -1.0 : 1.0);
    }
    return result.ptr;
}

bool readInteger(char const* text, char const* end, double& value) noexcept {
    std::int64_t whole = 0;
    if (std::from_chars(text, end, whole).ec != std::errc()) return false;
    if (whole == std::numeric_limits<std::int64_t>::min()) return false;
    value = static_cast<double>(whole);
    return true;
}

}  // namespace nxPLST::impl
