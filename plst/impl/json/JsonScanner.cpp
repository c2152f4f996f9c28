// Skips the tokens of JSON.
#include "plst/impl/json/JsonScanner.h"

#include "plst/impl/json/JsonNumberReader.h"
#include "plst/impl/json/JsonText.h"

namespace nxPLST::impl {

bool JsonScanner::fail(char const* why) noexcept {
    reason = why;
    return false;
}

bool JsonScanner::fail(char const* why, char const* place) noexcept {
    at = place;
    return fail(why);
}

bool JsonScanner::passSpace() noexcept {
    for (; !atEnd(); ++at) {
        if (*at == '/') {
            if (!passComment()) return false;
        } else if (!isSpace(*at)) {
            return true;
        }
    }
    return true;
}

/// Stops at the comment's last byte.
bool JsonScanner::passComment() noexcept {
    std::string_view const rest(at + 1, static_cast<std::size_t>(end_ - at - 1));
    bool const isLine = rest.starts_with('/');
    if (!isLine && !rest.starts_with('*')) {
        return rest.empty() ? fail("the text ends inside a comment", end_) : fail("expected '/' or '*'", at + 1);
    }
    std::size_t const close = rest.find(isLine ? "\n" : "*/", 1);
    if (close == std::string_view::npos) return fail("the text ends inside a comment", end_);
    at = rest.data() + close + (isLine ? 0 : 1);
    return true;
}

bool JsonScanner::passText() noexcept {
    for (++at; !atEnd(); ++at) {
        auto const byte = static_cast<unsigned char>(*at);
        if (byte == '"') {
            ++at;
            return true;
        }
        if (byte < ' ')
            return fail(byte == '\n' || byte == '\r' ? "line break in a string" : "control character in a string");
        if (byte == '\\' && !passEscape()) return false;
        if (byte >= 0x80 && !passUtf8()) return false;
    }
    return fail("the text ends inside a string");
}

/// Stops at the sequence's last byte.
bool JsonScanner::passEscape() noexcept {
    ++at;
    if (atEnd()) return fail("the text ends inside a string");
    if (*at != 'u')
        return std::string_view("\"\\/bfnrt").find(*at) != std::string_view::npos || fail("no such escape sequence");
    for (int i = 0; i < 4; ++i) {
        ++at;
        if (atEnd()) return fail("the text ends inside a string");
        if (hexDigit(*at) < 0) return fail("expected four hexadecimal digits");
    }
    return true;
}

/// Stops at the character's last byte.
bool JsonScanner::passUtf8() noexcept {
    auto const lead = static_cast<unsigned char>(*at);
    int const more = lead < 0xC0 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : lead < 0xF8 ? 3 : 0;
    if (more == 0) return fail("invalid UTF-8");
    for (int i = 0; i < more; ++i) {
        ++at;
        if (atEnd()) return fail("the text ends inside a string");
        if ((static_cast<unsigned char>(*at) & 0xC0) != 0x80) return fail("invalid UTF-8");
    }
    return true;
}

bool JsonScanner::passNumber() noexcept {
    char const* const first = at;
    bool isInteger = true;
    if (next() == '-') ++at;
    if (next() == '0') {
        ++at;
    } else if (!passDigits()) {
        return false;
    }
    if (next() == '.') {
        isInteger = false;
        ++at;
        if (!passDigits()) return false;
    }
    if (next() == 'e' || next() == 'E') {
        isInteger = false;
        ++at;
        if (next() == '+' || next() == '-') ++at;
        if (!passDigits()) return false;
    }
    return checkRange(first, isInteger);
}

bool JsonScanner::passDigits() noexcept {
    if (!isDigit(next())) return fail(atEnd() ? "the text ends inside a number" : "expected a digit");
    while (isDigit(next())) ++at;
    return true;
}

bool JsonScanner::checkRange(char const* first, bool isInteger) noexcept {
    double value = 0;
    if (isInteger) return readInteger(first, at, value) || fail("whole number outside of signed 64 bits", first);
    return readReal(first, at, value) || fail("number too large for a double", first);
}

bool JsonScanner::passWord(std::string_view word) noexcept {
    for (char const c : word) {
        if (next() != c) return fail(atEnd() ? "the text ends inside a word" : "expected true, false or null");
        ++at;
    }
    return true;
}

}  // namespace nxPLST::impl
