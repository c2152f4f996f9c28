// Exact decimal digits of doubles by integer arithmetic.
//
// A double is m·2^-f. Below, its digits come from products m·5^k, which fit 128 bits for all values that people
// usually write; the standard library does the rest. Doubles in those ranges lie farther apart than the last of
// twenty digits, so rounding that digit never carries into a digit more.
#include "plst/impl/JsonNumberWriter.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace nxPLST::impl {
namespace {

using Wide = unsigned __int128;

constexpr int significantDigits = 20;
constexpr int shortDigits = 6;
constexpr double wholeLimit = 9223372036854775808.0;  // 2^63
/// From here down m·5^k may need more than 128 bits.
constexpr double smallestExact = 1e-12;

template <std::uint64_t base, std::size_t count>
constexpr std::array<std::uint64_t, count> powers() {
    std::array<std::uint64_t, count> result{1};
    for (std::size_t i = 1; i < count; ++i) result[i] = result[i - 1] * base;
    return result;
}
constexpr auto powersOfTen = powers<10, 20>();
constexpr auto powersOfFive = powers<5, 28>();
constexpr double powersOfTenth[] = {1e-1, 1e-2, 1e-3, 1e-4, 1e-5, 1e-6, 1e-7, 1e-8, 1e-9, 1e-10, 1e-11, 1e-12};

/// Eight decimal digits as the bytes of a word, the first digit in the lowest byte.
std::uint64_t eightDigits(std::uint32_t value) {
    // Halves, quarters, then single digits, each step in all lanes of the word at once.
    std::uint64_t const halves = value / 10000 | std::uint64_t(value % 10000) << 32;
    std::uint64_t const hundreds = ((halves * 10486) >> 20) & 0x0000007F0000007F;
    std::uint64_t const pairs = hundreds | (halves - 100 * hundreds) << 16;
    std::uint64_t const tens = ((pairs * 103) >> 10) & 0x000F000F000F000F;
    return (tens | (pairs - 10 * tens) << 8) | 0x3030303030303030;
}

char* putEight(char* to, std::uint32_t value) {
    std::uint64_t word = eightDigits(value);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    std::memcpy(to, &word, sizeof word);
    return to + 8;
}
