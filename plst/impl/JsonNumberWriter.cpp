// Exact decimal digits of doubles by integer arithmetic.
//
// A double is m/2^b with whole m. Its digits come from products of m with a power of ten or five, which fit 128
// bits for all values that people usually write; the standard library does the rest. In those ranges no double
// lies so close below a power of ten that rounding the twentieth digit would carry into one digit more.
#include "plst/impl/JsonNumberWriter.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace nxPLST::impl {
namespace {

__extension__ typedef unsigned __int128 Wide;

constexpr int exactDigits = 20;
constexpr int shortDigits = 6;
constexpr double wholeLimit = 9223372036854775808.0;  // 2^63
constexpr double smallestByProducts = 1e-12;          // from here down 128 bits may not do
constexpr double shortWholeLimit = 1e6;
constexpr int leastFixedExponent = -4;  // smaller decimal exponents are written with an "e"

template <std::uint64_t base, std::size_t count>
constexpr std::array<std::uint64_t, count> powers() {
    std::array<std::uint64_t, count> result{1};
    for (std::size_t i = 1; i < count; ++i) result[i] = result[i - 1] * base;
    return result;
}
constexpr auto tenTo = powers<10, 20>();
constexpr auto fiveTo = powers<5, 24>();
constexpr std::uint64_t eightDigitLimit = tenTo[8];

/// Eight decimal digits, the first one in the lowest byte: split into halves, pairs and single digits, all lanes
/// of the word at once.
std::uint64_t eightDigits(std::uint64_t value) {
    std::uint64_t const halves = value / 10000 | (value % 10000) << 32;
    std::uint64_t const hundreds = ((halves * 10486) >> 20) & 0x0000007F'0000007F;
    std::uint64_t const pairs = hundreds | (halves - 100 * hundreds) << 16;
    std::uint64_t const tens = ((pairs * 103) >> 10) & 0x000F000F'000F000F;
    return tens | (pairs - 10 * tens) << 8;
}

constexpr std::uint64_t zeroCharacters = 0x30303030'30303030;

/// From a word whose lowest byte is the first character to the bytes in memory, and back.
std::uint64_t inMemoryOrder(std::uint64_t word) {
    return std::endian::native == std::endian::big ? __builtin_bswap64(word) : word;
}

void store(char* to, std::uint64_t digits) {
    std::uint64_t const word = inMemoryOrder(digits | zeroCharacters);
    std::memcpy(to, &word, sizeof word);
}

char* putEight(char* to, std::uint64_t value) {
    store(to, eightDigits(value));
    return to + 8;
}

char* putPair(char* to, std::uint64_t value) {
    to[0] = static_cast<char>('0' + value / 10);
    to[1] = static_cast<char>('0' + value % 10);
    return to + 2;
}

char* putTen(char* to, std::uint64_t value) {
    return putEight(putPair(to, value / eightDigitLimit), value % eightDigitLimit);
}

/// A whole number below 10^8 without leading zeros.
char* putLeading(char* to, std::uint64_t value) {
    std::uint64_t const digits = eightDigits(value);
    int const zeros = std::countr_zero(digits | std::uint64_t(1) << 56) / 8;
    store(to, digits >> (8 * zeros));
    return to + 8 - zeros;
}

char* putWhole(char* to, std::uint64_t value) {
    if (value < eightDigitLimit) return putLeading(to, value);
    std::uint64_t const high = value / eightDigitLimit;
    to = high < eightDigitLimit ? putLeading(to, high)
                                : putEight(putLeading(to, high / eightDigitLimit), high % eightDigitLimit);
    return putEight(to, value % eightDigitLimit);
}

/// Without the zeros at the end. Requires: another character among the last 24.
char* trimZeros(char* end) {
    for (;; end -= 8) {
        std::uint64_t word;
        std::memcpy(&word, end - 8, sizeof word);
        word = inMemoryOrder(word) ^ zeroCharacters;
        if (word != 0) return end - std::countl_zero(word) / 8;
    }
}

/// `value`/2^bits to the nearest whole number, a tie to the even one.
std::uint64_t dividedByPower(Wide value, int bits) {
    Wide const odd = (value >> bits) & 1;
    return static_cast<std::uint64_t>((value + (Wide(1) << (bits - 1)) - 1 + odd) >> bits);
}

/// A value of at least 1 that is not whole.
char* putMixed(char* to, std::uint64_t mantissa, int bits) {
    char* const point = putWhole(to, mantissa >> bits);
    auto const wholeDigits = point - to;
    std::uint64_t const fraction = mantissa << (64 - bits);  // in units of 2^-64
    std::uint64_t const digits = dividedByPower(Wide(fraction) * tenTo[exactDigits - wholeDigits], 64);
    // Left-aligned in nineteen places.
    std::uint64_t const places = digits * tenTo[wholeDigits - 1];
    std::uint64_t const firstEleven = places / eightDigitLimit;
    std::uint64_t const firstThree = firstEleven / eightDigitLimit;
    *point = '.';
    point[1] = static_cast<char>('0' + firstThree / 100);
    putPair(point + 2, firstThree % 100);
    putEight(point + 4, firstEleven % eightDigitLimit);
    return trimZeros(putEight(point + 12, places % eightDigitLimit));
}

/// The twenty significant digits of a value below 1 and the number of zeros between the point and them.
struct Digits {
    std::uint64_t firstTen;
    std::uint64_t lastTen;
    int zeros;
};

Digits digitsBelowOne(std::uint64_t mantissa, int bits) {
    // The value is below 2^(53-bits), which says how many zeros there are, give or take one.
    int zeros = (bits - 53) * 1233 / 4096;
    for (;; ++zeros) {
        int const power = zeros + 10;  // value·10^power has ten digits before the point
        int const shift = bits - power;
        Wide const product = Wide(mantissa) * fiveTo[power];
        auto const firstTen = static_cast<std::uint64_t>(product >> shift);
        if (firstTen < tenTo[9]) continue;
        Wide const rest = product & ((Wide(1) << shift) - 1);
        std::uint64_t const lastTen = dividedByPower(rest * fiveTo[10], shift - 10);
        bool const carry = lastTen == tenTo[10];
        return {firstTen + carry, carry ? 0 : lastTen, zeros};
    }
}

char* putBelowOne(char* to, Digits const& digits) {
    int const exponent = -digits.zeros - 1;
    if (exponent >= leastFixedExponent) {
        std::memcpy(to, "0.000", 5);
        return trimZeros(putTen(putTen(to + 2 + digits.zeros, digits.firstTen), digits.lastTen));
    }
    char* end = trimZeros(putTen(putTen(to + 1, digits.firstTen), digits.lastTen));
    to[0] = to[1];
    to[1] = '.';
    std::memcpy(end, "e-", 2);
    return putPair(end + 2, static_cast<std::uint64_t>(-exponent));
}

}  // namespace

char* writeExactNumber(char* to, double value) noexcept {
    if (std::signbit(value)) *to++ = '-';
    double const size = std::fabs(value);
    if (size < wholeLimit) {
        auto const whole = static_cast<std::int64_t>(size);
        if (static_cast<double>(whole) == size) return putWhole(to, static_cast<std::uint64_t>(whole));
        auto const word = std::bit_cast<std::uint64_t>(size);
        std::uint64_t const mantissa = (word & 0x000FFFFF'FFFFFFFF) | 0x00100000'00000000;
        int const bits = 1075 - static_cast<int>(word >> 52);
        if (size >= 1) return putMixed(to, mantissa, bits);
        if (size >= smallestByProducts) return putBelowOne(to, digitsBelowOne(mantissa, bits));
    }
    return std::to_chars(to, to + numberRoom - 1, size, std::chars_format::general, exactDigits).ptr;
}

char* writeShortNumber(char* to, double value) noexcept {
    if (std::fabs(value) < shortWholeLimit && std::trunc(value) == value) return writeExactNumber(to, value);
    return std::to_chars(to, to + numberRoom, value, std::chars_format::general, shortDigits).ptr;
}

}  // namespace nxPLST::impl
