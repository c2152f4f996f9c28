// The bytes of packet files; docs/packets.md describes them for people.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// A file is the file mark and then tokens. A token is one byte, its kind in the upper three bits and a number in
/// the lower five; the number 31 means that the rest of a larger one follows, seven bits a byte, lowest first.
namespace ioFormat {

using namespace std::string_view_literals;

/// The first byte keeps files apart from text, the line end shows when a transfer took them for text.
inline constexpr std::string_view fileMark = "\x89NXPK\r\n"sv;
inline constexpr unsigned char version = 1;

enum Kind : unsigned char {
    mark = 0,          ///< the number is one of `Mark`
    integer = 1,       ///< a zigzag-coded 32-bit integer
    wholeDouble = 2,   ///< a double with the value of such an integer
    text = 3,          ///< that many bytes follow
    objectPacket = 4,  ///< begins a packet of that type, whose object later references may name
    plainPacket = 5,   ///< begins a packet of that type; only its own end may refer to its object, if it has one
    reference = 6,     ///< 0 = null, otherwise how many objects back, the one begun last being 1
    name = 7,  ///< 0 = a text follows that takes the next place, otherwise the text in that place, counted from 1
};

enum Mark : unsigned char {
    falseMark = 0,
    trueMark = 1,
    doubleMark = 2,       ///< eight bytes follow, lowest first
    endMark = 3,          ///< ends the innermost packet
    referredEndMark = 4,  ///< ends the innermost packet and is a reference to its object from the one around it
    typeMark = 5,         ///< a text token follows: the name of the next packet type
    endOfFileMark = 6,
};

inline constexpr unsigned kindShift = 5;
inline constexpr unsigned char numberMask = 31;
/// The number that announces a longer one.
inline constexpr unsigned char longNumber = 31;
/// The most bytes that the rest of a long number has, and a whole token.
inline constexpr std::size_t longestRest = 10;
inline constexpr std::size_t longestToken = 1 + longestRest;
inline constexpr std::size_t longestTypeName = 255;

constexpr unsigned char token(Kind kind, unsigned number) noexcept {
    return static_cast<unsigned char>(static_cast<unsigned>(kind) << kindShift | number);
}
constexpr Kind kindOf(unsigned char token) noexcept { return static_cast<Kind>(token >> kindShift); }
constexpr unsigned numberOf(unsigned char token) noexcept { return token & numberMask; }

/// Small magnitudes of either sign become small numbers: 0, -1, 1, -2 … become 0, 1, 2, 3 …
constexpr std::uint32_t zigzag(std::int32_t value) noexcept {
    return static_cast<std::uint32_t>(value) << 1 ^ static_cast<std::uint32_t>(value >> 31);
}
constexpr std::int32_t unzigzag(std::uint32_t code) noexcept {
    return static_cast<std::int32_t>(code >> 1 ^ (0U - (code & 1U)));
}

/// Puts a token at `to`, where there is room for the longest one, and gives the place behind it.
inline char* putToken(char* to, Kind kind, std::uint64_t number) noexcept {
    bool const isLong = number >= longNumber;
    *to++ = static_cast<char>(token(kind, isLong ? longNumber : static_cast<unsigned>(number)));
    if (!isLong) return to;
    for (number -= longNumber; number >= 0x80; number >>= 7) *to++ = static_cast<char>(number | 0x80);
    *to++ = static_cast<char>(number);
    return to;
}

/// Adds the rest of a long number, which begins at `from`, to `number`, and gives the place behind it. Null when it
/// does not end before `end`, or is too large for 64 bits.
inline char const* addRest(char const* from, char const* end, std::uint64_t& number) noexcept {
    std::uint64_t rest = 0;
    for (unsigned shift = 0; shift < 64 && from != end; shift += 7) {
        std::uint64_t const group = static_cast<unsigned char>(*from++);
        rest |= (group & 0x7F) << shift;
        if (shift == 63 && group > 1) return nullptr;
        if (group >= 0x80) continue;
        number += rest;
        return number >= rest ? from : nullptr;
    }
    return nullptr;
}

}  // namespace ioFormat
