// UTF-8 and escape sequences in JSON texts.
#include "plst/impl/json/JsonText.h"

#include <string_view>

namespace nxPLST::impl {
namespace {

void appendUtf8(std::string& text, unsigned code) {
    auto const put = [&](unsigned byte) { text += static_cast<char>(byte); };
    auto const putSixBits = [&](int shift) { put(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) return put(code);
    if (code < 0x800) {
        put(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            put(0xE0 | code >> 12);
        } else {
            put(0xF0 | code >> 18);
            putSixBits(12);
        }
        putSixBits(6);
    }
    putSixBits(0);
}

/// The code unit of the escape \uXXXX at `at`; negative when there is none.
int codeUnit(char const* at, char const* end) {
    if (end - at < 6 || at[0] != '\\' || at[1] != 'u') return -1;
    int unit = 0;
    for (int i = 2; i < 6; ++i) {
        int const digit = hexDigit(at[i]);
        if (digit < 0) return -1;
        unit = unit << 4 | digit;
    }
    return unit;
}

char const* readUnicodeEscape(char const* at, char const* end, std::string& text) {
    int code = codeUnit(at, end);
    if (code < 0) return nullptr;
    at += 6;
    if ((code & 0xF800) == 0xD800) {
        int const low = codeUnit(at, end);
        if ((code & 0xFC00) != 0xD800 || (low & ~0x3FF) != 0xDC00) return nullptr;
        code = 0x10000 + ((code & 0x3FF) << 10 | (low & 0x3FF));
        at += 6;
    }
    appendUtf8(text, static_cast<unsigned>(code));
    return at;
}

}  // namespace

int hexDigit(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    char const letter = static_cast<char>(c | 0x20);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

char const* utf8RunEnd(char const* at, char const* end) noexcept {
    char const* const begin = at;
    while (at != end && static_cast<unsigned char>(*at) >= 0x80) {
        auto const lead = static_cast<unsigned char>(*at);
        int const length = lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 0;
        if (length == 0 || length > end - at) return nullptr;
        for (int i = 1; i < length; ++i) {
            if ((static_cast<unsigned char>(at[i]) & 0xC0) != 0x80) return nullptr;
        }
        at += length;
    }
    return at == begin ? nullptr : at;
}

char const* readEscape(char const* at, char const* end, std::string& text) {
    static constexpr std::string_view letters = "\"\\/bfnrt";
    static constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    if (end - at < 2) return nullptr;
    if (at[1] == 'u') return readUnicodeEscape(at, end, text);
    std::size_t const which = letters.find(at[1]);
    if (which == std::string_view::npos) return nullptr;
    text += meanings[which];
    return at + 2;
}

}  // namespace nxPLST::impl
