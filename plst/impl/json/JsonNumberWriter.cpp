// Computes exact decimal digits of doubles by integer arithmetic.
//
// A double is m/2^b with whole m. Multiplied by a power of ten so that twelve digits stand before the point, usual
// values fit 128 bits; the standard library handles the rest. In that range no double lies so close below a power of
// ten that rounding the twentieth digit would carry into one more digit.
#include "plst/impl/json/JsonNumberWriter.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "plst/impl/json/decimal.h"

namespace nxPLST::impl {
namespace {

constexpr int exactDigits = 20;
constexpr int shortDigits = 6;
constexpr double wholeLimit = 9223372036854775808.0;  // 2^63
constexpr double leastByProduct = 1e-4;               // below, an exponent is written
constexpr double limitByProduct = 1e10;               // from here on, most numbers are whole
constexpr double shortWholeLimit = 1e6;

char* putEight(char* to, std::uint64_t value) {
    storeDigits<std::uint64_t>(to, eightDigits(value));
    return to + 8;
}

char* putWhole(char* to, std::uint64_t value) {
    if (value < eightDigitLimit) return writeShortWhole(to, value);
    std::uint64_t const high = value / eightDigitLimit;
    to = high < eightDigitLimit ? writeShortWhole(to, high)
                                : putEight(writeShortWhole(to, high / eightDigitLimit), high % eightDigitLimit);
    return putEight(to, value % eightDigitLimit);
}

/// Converts a value from 2^n to below 2^(n+1) to twelve digits and a fraction.
struct Scale {
    double powerOfTen;        // the only one that can lie in the range
    std::uint64_t factor[2];  // 5^k·2^s, for values below it and for values from it on
    int exponent;             // the decimal exponent of values below it
};

constexpr int leastBinaryExponent = -14;
constexpr auto scales = [] {
    // As doubles, these are not below the powers of ten that they represent, so comparing with them is exact.
    constexpr double powersOfTen[] = {1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};
    std::array<std::uint64_t, 17> fiveTo{1};
    for (std::size_t i = 1; i < fiveTo.size(); ++i) fiveTo[i] = 5 * fiveTo[i - 1];

    std::array<Scale, 48> result{};
    int exponent = -5;
    for (int n = leastBinaryExponent; Scale & scale : result) {
        double const limit = n < 0 ? 1.0 / static_cast<double>(1 << -n) : static_cast<double>(std::uint64_t(1) << n);
        while (powersOfTen[exponent + 5] <= limit) ++exponent;
        int const power = 11 - exponent;
        scale = {
            powersOfTen[exponent + 5], {fiveTo[power] << (n + 1 + power), fiveTo[power - 1] << (n + power)}, exponent};
        ++n;
    }
    return result;
}();

/// The first twenty digits of a value that is firstTwelve.lastEight·10^(exponent-11).
struct Digits {
    std::uint64_t firstTwelve;
    std::uint64_t lastEight;
    int exponent;
};

/// Requires: from `leastByProduct` to below `limitByProduct`, not whole.
Digits twentyDigits(double value) {
    auto const word = std::bit_cast<std::uint64_t>(value);
    Scale const& scale = scales[(word >> 52) - (1023 + leastBinaryExponent)];
    bool const reachesPower = value >= scale.powerOfTen;
    std::uint64_t const mantissa = word << 11 | std::uint64_t(1) << 63;
    Wide const product = Wide(mantissa) * scale.factor[reachesPower];
    Wide const next = Wide(static_cast<std::uint64_t>(product)) * eightDigitLimit;
    auto const lastEight = static_cast<std::uint64_t>(next >> 64);
    auto const rest = static_cast<std::uint64_t>(next);
    std::uint64_t const half = std::uint64_t(1) << 63;
    std::uint64_t const rounded = lastEight + (rest > half - lastEight % 2);  // a tie goes to the even one
    bool const carry = rounded == eightDigitLimit;
    return {static_cast<std::uint64_t>(product >> 64) + carry, carry ? 0 : rounded, scale.exponent + reachesPower};
}

/// Moves the eleven characters at `at` on by one and puts `character` before them.
void insert(char* at, char character) {
    std::uint64_t words[2];
    std::memcpy(&words[0], at, 8);
    std::memcpy(&words[1], at + 3, 8);
    std::memcpy(at + 1, &words[0], 8);
    std::memcpy(at + 4, &words[1], 8);
    *at = character;
}

char* putTwentyDigits(char* to, Digits const& digits) {
    auto const [middle, last] = twiceEightDigits(digits.firstTwelve % eightDigitLimit, digits.lastEight);
    bool const belowOne = digits.exponent < 0;
    if (belowOne) {
        std::copy_n("0.000", 5, to);
        to += 1 - digits.exponent;
    }
    storeDigits<std::uint32_t>(to, fourDigits(digits.firstTwelve / eightDigitLimit));
    storeDigits<std::uint64_t>(to + 4, middle);
    if (!belowOne) insert(to + digits.exponent + 1, '.');
    to += belowOne ? 12 : 13;
    storeDigits<std::uint64_t>(to, last);
    if (last != 0) [[likely]]
        return to + 8 - std::countl_zero(last) / 8;
    while (to[-1] == '0') --to;
    return to;
}

}  // namespace

char* writeAnyExactNumber(char* to, double value) noexcept {
    if (std::signbit(value)) *to++ = '-';
    double const size = std::fabs(value);
    if (size < wholeLimit) {
        auto const whole = static_cast<std::int64_t>(size);
        if (static_cast<double>(whole) == size) return putWhole(to, static_cast<std::uint64_t>(whole));
        if (size >= leastByProduct && size < limitByProduct) return putTwentyDigits(to, twentyDigits(size));
    }
    return std::to_chars(to, to + numberRoom - 1, size, std::chars_format::general, exactDigits).ptr;
}

char* writeShortNumber(char* to, double value) noexcept {
    if (std::fabs(value) < shortWholeLimit && std::trunc(value) == value) return writeExactNumber(to, value);
    return std::to_chars(to, to + numberRoom, value, std::chars_format::general, shortDigits).ptr;
}

}  // namespace nxPLST::impl
