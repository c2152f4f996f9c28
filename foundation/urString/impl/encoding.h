// Converts bytes to characters and back, for every encoding of IString.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "foundation/urString/CString.h"
#include "foundation/urString/IString.h"

namespace urString::impl {

constexpr char32_t replacementCharacter = 0xfffd;

/// The character for a byte that belongs to no character; encoding turns it back into the byte.
[[nodiscard]] constexpr char32_t escapeOf(unsigned char byte) { return 0xdc00 + char32_t(byte); }
[[nodiscard]] constexpr bool isEscape(char32_t character) { return 0xdc80 <= character && character <= 0xdcff; }

/// The character itself if an IString may contain it, otherwise the replacement character.
[[nodiscard]] constexpr char32_t held(char32_t character) {
    bool const surrogate = 0xd800 <= character && character <= 0xdfff;
    return character > 0x10ffff || (surrogate && !isEscape(character)) ? replacementCharacter : character;
}

/// Appends the characters of `bytes`; false when some of the bytes are not UTF-8.
bool decode(std::string_view bytes, Encoding encoding, std::u32string& out);

[[nodiscard]] std::size_t encodedSize(std::u32string_view text, Encoding encoding) noexcept;
[[nodiscard]] CString encode(std::u32string_view text, Encoding encoding);

}  // namespace urString::impl
