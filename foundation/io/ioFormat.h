// The byte format of packet files; docs/packets.md describes it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// A file is the file mark followed by tokens. A token starts with one byte: the upper three bits are its kind, the
/// lower five a number. 31 means that the rest of a larger number follows, seven bits per byte, lowest first.
namespace ioFormat {

using namespace std::string_view_literals;

/// The first byte distinguishes files from text; the line end shows whether a transfer converted line ends.
inline constexpr std::string_view fileMark = "\x89NXPK\r\n"sv;
inline constexpr unsigned char version = 1;

enum Kind : unsigned char {
    mark = 0,          ///< the number is one of `Mark`
    integer = 1,       ///< a zigzag-coded 32-bit integer
    wholeDouble = 2,   ///< a double whose value is such an integer
    text = 3,          ///< that many bytes follow
    objectPacket = 4,  ///< begins a packet of that type; later references may name its object
    plainPacket = 5,   ///< begins a packet of that type; only its own end may refer to its object, if any
    reference = 6,     ///< 0 is null, otherwise how many objects back; the latest object begun is 1
    name = 7,          ///< 0: a text follows and takes the next place; otherwise the text in that place, counted from 1
};

enum Mark : unsigned char {
    falseMark = 0,
    trueMark = 1,
    doubleMark = 2,       ///< eight bytes follow, lowest first
    endMark = 3,          ///< ends the innermost packet
    referredEndMark = 4,  ///< ends the innermost packet and gives the enclosing one a reference to its object
    typeMark = 5,         ///< a text token follows: the name of the next packet type
    endOfFileMark = 6,
};

inline constexpr unsigned kindShift = 5;
inline constexpr unsigned char numberMask = 31;
/// The number that means: the rest of a larger number follows.
inline constexpr unsigned char longNumber = 31;
/// The most bytes in the rest of a long number, and in a whole token.
inline constexpr std::size_t longestRest = 10;
inline constexpr std::size_t longestToken = 1 + longestRest;
inline constexpr std::size_t longestTypeName = 255;

constexpr unsigned char token(Kind kind, unsigned number) noexcept {
    return static_cast<unsigned char>(static_cast<unsigned>(kind) << kindShift | number);
}
constexpr Kind kindOf(unsigned char token) noexcept { return static_cast<Kind>(token >> kindShift); }
constexpr unsigned numberOf(unsigned char token) noexcept { return token & numberMask; }

/// Maps numbers of small magnitude to small codes: 0, -1, 1, -2 … become 0, 1, 2, 3 …
constexpr std::uint32_t zigzag(std::int32_t value) noexcept {
    return static_cast<std::uint32_t>(value) << 1 ^ static_cast<std::uint32_t>(value >> 31);
}
constexpr std::int32_t unzigzag(std::uint32_t code) noexcept {
    return static_cast<std::int32_t>(code >> 1 ^ (0U - (code & 1U)));
}

/// Writes a token to `to`, which has room for the longest token. Returns the position after it.
inline char* putToken(char* to, Kind kind, std::uint64_t number) noexcept {
    bool const isLong = number >= longNumber;
    *to++ = static_cast<char>(token(kind, isLong ? longNumber : static_cast<unsigned>(number)));
    if (!isLong) return to;
    for (number -= longNumber; number >= 0x80; number >>= 7) *to++ = static_cast<char>(number | 0x80);
    *to++ = static_cast<char>(number);
    return to;
}

/// The number of the token at `at`. Returns the position after it, or null if the number exceeds 64 bits. Reads at most
/// `longestToken` bytes.
inline char const* takeNumber(char const* at, std::uint64_t& number) noexcept {
    number = numberOf(static_cast<unsigned char>(*at++));
    if (number != longNumber) return at;
    std::uint64_t rest = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
        std::uint64_t const group = static_cast<unsigned char>(*at++);
        rest |= (group & 0x7F) << shift;
        if (shift == 63 && group > 1) return nullptr;
        if (group >= 0x80) continue;
        number += rest;
        return number >= rest ? at : nullptr;
    }
    return nullptr;
}

}  // namespace ioFormat
