// Strict UTF-8 decoding and encoding that never fails.
#include "foundation/urString/impl/encoding.h"

#include <utf8.h>

#include <iterator>

#include "foundation/urString/utf8.h"

namespace urString::impl {

namespace {

/// The valid bytes after a lead byte: their number, and the bounds of the first, which exclude overlong forms,
/// surrogates and numbers beyond U+10FFFF (table 3-7 of the Unicode standard).
struct Continuation {
    std::size_t count = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xbf;
};

Continuation continuationOf(unsigned char lead) noexcept {
    if (lead < 0xc2 || lead > 0xf4) return {};
    if (lead < 0xe0) return {1};
    if (lead == 0xe0) return {2, 0xa0};
    if (lead == 0xed) return {2, 0x80, 0x9f};
    if (lead < 0xf0) return {2};
    if (lead == 0xf0) return {3, 0x90};
    if (lead == 0xf4) return {3, 0x80, 0x8f};
    return {3};
}

/// The length of the ill-formed piece at the start of `bytes`: the longest possible start of a character (Unicode's
/// "maximal subpart"), at least one byte. Requires: no well-formed character starts here.
std::size_t illFormedLength(std::string_view bytes) noexcept {
    auto [count, low, high] = continuationOf(static_cast<unsigned char>(bytes[0]));
    std::size_t length = 1;
    for (; length <= count && length < bytes.size(); ++length) {
        auto const byte = static_cast<unsigned char>(bytes[length]);
        if (byte < low || byte > high) break;
        low = 0x80;
        high = 0xbf;
    }
    return length;
}

void appendIllFormed(std::string_view bytes, Encoding encoding, std::u32string& out) {
    if (encoding == Encoding::utf8) {
        out.push_back(replacementCharacter);
    } else {
        for (char byte : bytes) out.push_back(escapeOf(static_cast<unsigned char>(byte)));
    }
}

bool isByte(char32_t character, Encoding encoding) noexcept {
    return character < 0x80 || (encoding == Encoding::multibyte && isEscape(character));
}

/// UTF-8 cannot encode an escape.
char32_t encodable(char32_t character) noexcept { return isEscape(character) ? replacementCharacter : character; }

}  // namespace

bool decode(std::string_view bytes, Encoding encoding, std::u32string& out) {
    bool wellFormed = true;
    while (!bytes.empty()) {
        char const* const bad = utf8::find_invalid(bytes.data(), bytes.data() + bytes.size());
        utf8::unchecked::utf8to32(bytes.data(), bad, std::back_inserter(out));
        bytes.remove_prefix(std::size_t(bad - bytes.data()));
        if (bytes.empty()) break;
        wellFormed = false;
        std::size_t const length = illFormedLength(bytes);
        appendIllFormed(bytes.substr(0, length), encoding, out);
        bytes.remove_prefix(length);
    }
    return wellFormed;
}

std::size_t encodedSize(std::u32string_view text, Encoding encoding) noexcept {
    std::size_t size = 0;
    for (char32_t const character : text) {
        size += isByte(character, encoding) ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    }
    return size;
}

CString encode(std::u32string_view text, Encoding encoding) {
    CString result;
    result.resizeAndOverwrite(encodedSize(text, encoding), [&](char* bytes, std::size_t size) {
        for (char32_t const character : text) {
            if (isByte(character, encoding)) {
                *bytes++ = static_cast<char>(character & 0xff);
            } else {
                bytes = utf8::unchecked::append(encodable(character), bytes);
            }
        }
        return size;
    });
    return result;
}

}  // namespace urString::impl

namespace urString {

bool isUtf8(std::string_view bytes) noexcept {
    return utf8::find_invalid(bytes.data(), bytes.data() + bytes.size()) == bytes.data() + bytes.size();
}

}  // namespace urString
