// JSON strings: UTF-8, escapes, and runs of bytes that need none.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace nxPLST::impl {

/// The end of the non-ASCII characters from `at` on; null when there is none, or when one is not UTF-8. Like yajl, it
/// accepts overlong forms and surrogates. Requires: at least one byte before `end`.
[[nodiscard]] char const* utf8RunEnd(char const* at, char const* end) noexcept;

/// Appends the character of the escape sequence at `at` and returns its end. Null when it is invalid, or half of a
/// surrogate pair. Requires: a backslash at `at`.
char const* readEscape(char const* at, char const* end, std::string& text);

/// The space that an escape sequence may need.
inline constexpr std::size_t longestEscape = 6;

/// Writes the escape sequence \uXXXX of a code unit; returns its end.
inline char* putUnit(char* to, unsigned unit) noexcept {
    static constexpr char digits[] = "0123456789ABCDEF";
    *to++ = '\\';
    *to++ = 'u';
    for (int shift = 12; shift >= 0; shift -= 4) *to++ = digits[unit >> shift & 0xF];
    return to;
}
/// Writes the escape sequence of a quote, a backslash or a control character, the short form if there is one.
inline char* putEscape(char* to, char character) noexcept {
    char letter = character;
    switch (character) {
        case '"':
        case '\\': break;
        case '\b': letter = 'b'; break;
        case '\f': letter = 'f'; break;
        case '\n': letter = 'n'; break;
        case '\r': letter = 'r'; break;
        case '\t': letter = 't'; break;
        default: return putUnit(to, static_cast<unsigned char>(character));
    }
    *to++ = '\\';
    *to++ = letter;
    return to;
}

/// The value of a hexadecimal digit; negative for other characters.
[[nodiscard]] int hexDigit(char c) noexcept;

/// The bytes that end a run of bytes to copy unchanged.
enum class Stop {
    atEscapes,         ///< a quote, a backslash or a control character
    atEscapesAndUtf8,  ///< those, and all non-ASCII bytes
};

namespace scan {

[[nodiscard]] inline std::uint64_t load(char const* text) noexcept {
    std::uint64_t word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

constexpr std::uint64_t inEach(std::uint64_t byte) { return byte * 0x01010101'01010101; }

/// The top bit of each byte below `limit`; bits above the lowest one set may be wrong.
constexpr std::uint64_t below(std::uint64_t word, std::uint64_t limit) {
    return (word - inEach(limit)) & ~word & inEach(0x80);
}

/// The number of bytes before the first stop among eight.
template <Stop stop>
[[nodiscard]] int runInEight(char const* text) noexcept {
    std::uint64_t word = load(text);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    std::uint64_t stops = below(word, ' ') | below(word ^ inEach('"'), 1) | below(word ^ inEach('\\'), 1);
    if constexpr (stop == Stop::atEscapesAndUtf8) stops |= word & inEach(0x80);
    return std::countr_zero(stops) / 8;
}

}  // namespace scan

/// The number of bytes before the first stop among sixteen.
template <Stop stop>
[[nodiscard]] inline int runInSixteen(char const* text) noexcept {
#if defined(__SSE2__)
    __m128i const bytes = _mm_loadu_si128(reinterpret_cast<__m128i const*>(text));
    __m128i const quotes = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('"'));
    __m128i const backslashes = _mm_cmpeq_epi8(bytes, _mm_set1_epi8('\\'));
    // As signed numbers, non-ASCII bytes are below the control characters.
    __m128i const others = stop == Stop::atEscapesAndUtf8
                               ? _mm_cmplt_epi8(bytes, _mm_set1_epi8(' '))
                               : _mm_cmpeq_epi8(_mm_min_epu8(bytes, _mm_set1_epi8(' ' - 1)), bytes);
    int const mask = _mm_movemask_epi8(_mm_or_si128(_mm_or_si128(quotes, backslashes), others));
    return std::countr_zero(static_cast<unsigned>(mask) | 1U << 16);
#else
    int const run = scan::runInEight<stop>(text);
    return run < 8 ? run : 8 + scan::runInEight<stop>(text + 8);
#endif
}

/// The first stop in [text, end), or `end`.
template <Stop stop>
[[nodiscard]] char const* runEnd(char const* text, char const* end) noexcept {
    for (; end - text >= 16; text += 16) {
        int const run = runInSixteen<stop>(text);
        if (run < 16) return text + run;
    }
    for (; text != end; ++text) {
        auto const byte = static_cast<unsigned char>(*text);
        if (byte < ' ' || byte == '"' || byte == '\\' || (stop == Stop::atEscapesAndUtf8 && byte >= 0x80)) break;
    }
    return text;
}

/// Whether JSON may have the byte between tokens. Yajl also takes vertical tabs and form feeds.
[[nodiscard]] inline bool isSpace(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// The end of the spaces from `at` on. Runs of sixteen are skipped at once: reading an indented catalogue takes a
/// quarter fewer instructions than byte by byte.
[[nodiscard]] inline char const* spaceEnd(char const* at, char const* end) noexcept {
#if defined(__SSE2__)
    for (; end - at >= 16; at += 16) {
        __m128i const bytes = _mm_loadu_si128(reinterpret_cast<__m128i const*>(at));
        __m128i const spaces = _mm_cmpeq_epi8(bytes, _mm_set1_epi8(' '));
        __m128i const controls = _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8('\t' - 1)),
                                               _mm_cmplt_epi8(bytes, _mm_set1_epi8('\r' + 1)));
        auto const mask = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(spaces, controls)));
        int const run = std::countr_one(mask);
        if (run < 16) return at + run;
    }
#endif
    while (at != end && isSpace(*at)) ++at;
    return at;
}

}  // namespace nxPLST::impl
