// JSON in a style of one's choice.
#include "plst/impl/json/StyledJsonWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "plst/Bool.h"
#include "plst/Double.h"
#include "plst/String.h"

namespace nxPLST::impl {
namespace {

constexpr std::size_t widestIndent = 16;
// Indentation would grow with the square of the depth.
constexpr std::size_t deepestIndent = 127;

/// The letter of a short escape sequence; NUL when there is none.
char shortEscape(char32_t character) {
    switch (character) {
        case '"': return '"';
        case '\\': return '\\';
        case '\b': return 'b';
        case '\f': return 'f';
        case '\n': return 'n';
        case '\r': return 'r';
        case '\t': return 't';
        default: return '\0';
    }
}

}  // namespace

StyledJsonWriter::StyledJsonWriter(JsonStyle const& style)
    : indent_(std::min<std::size_t>(style.indent, widestIndent)),
      asciiOnly_(style.asciiOnly),
      guard_(style.mostExpandedBytes) {}

bool StyledJsonWriter::write(Item const* root) {
    guard_.watch(root);
    if (!writeItem(root)) return false;
    while (!open_.empty()) {
        if (!writeNext()) return false;
    }
    return guard_.allows(text_.size());
}

/// Writes the next child of the innermost container, or closes it.
bool StyledJsonWriter::writeNext() {
    ChildWalk& children = open_.back();
    if (children.atEnd()) {
        char const closing = children.inDictionary() ? '}' : ']';
        open_.pop_back();
        if (!isFirst_) startLine();
        isFirst_ = false;
        text_ += closing;
        return true;
    }
    if (!isFirst_) text_ += ',';
    isFirst_ = false;
    startLine();
    Item const* item = nullptr;
    if (children.inDictionary()) {
        writeText(children.members.key());
        text_ += indent_ > 0 ? ": " : ":";
        item = children.members.item();
        children.members.advance();
    } else {
        item = children.elements.item();
        children.elements.advance();
    }
    return writeItem(item);
}

bool StyledJsonWriter::writeItem(Item const* item) {
    if (!guard_.allows(text_.size())) return false;
    if (!item) {
        text_ += "null";
        return true;
    }
    switch (item->type()) {
        case BoolType: text_ += static_cast<Bool const*>(item)->value() ? "true" : "false"; return true;
        case DoubleType: return writeNumber(static_cast<Double const*>(item)->value());
        case StringType: writeText(static_cast<String const*>(item)->value()); return true;
        case ArrayType: return open(*static_cast<Array const*>(item), '[');
        case DictionaryType: return open(*static_cast<Dictionary const*>(item), '{');
    }
    return false;
}

template <class Container>
bool StyledJsonWriter::open(Container const& container, char opening) {
    text_ += opening;
    open_.emplace_back(container);
    isFirst_ = true;
    return true;
}

/// Whole numbers are read with 64 bits: larger ones need an exponent, and the zero below zero a fraction.
bool StyledJsonWriter::writeNumber(double value) {
    if (!std::isfinite(value)) return false;
    if (value == 0 && std::signbit(value)) {
        text_ += "-0.0";
        return true;
    }
    char digits[32];
    auto const format = std::fabs(value) < 0x1p63 ? std::chars_format::general : std::chars_format::scientific;
    auto const isWhole = std::fabs(value) <= 0x1p53 && std::trunc(value) == value;
    auto const [end, problem] = isWhole ? std::to_chars(digits, digits + sizeof digits, static_cast<long long>(value))
                                        : std::to_chars(digits, digits + sizeof digits, value, format);
    text_.append(digits, end);
    return problem == std::errc();
}

/// Pieces that are no UTF-8 become U+FFFD, since no reader would take them.
void StyledJsonWriter::writeText(urString::CString const& text) {
    text_ += '"';
    bool const isAscii =
        std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (isAscii) {
        for (char const c : text) writeCharacter(static_cast<unsigned char>(c));
    } else {
        urString::IString const characters(text.view(), urString::Encoding::utf8);
        for (char32_t const c : characters.view()) writeCharacter(c);
    }
    text_ += '"';
}

void StyledJsonWriter::writeCharacter(char32_t character) {
    if (char const letter = shortEscape(character)) {
        text_ += '\\';
        text_ += letter;
    } else if (character >= ' ' && character < 0x80) {
        text_ += static_cast<char>(character);
    } else if (character >= 0x80 && !asciiOnly_) {
        text_ += urString::IString(std::u32string_view(&character, 1)).asUTF8().view();
    } else if (character < 0x10000) {
        writeUnit(character);
    } else {
        writeUnit(0xD7C0 + (character >> 10));
        writeUnit(0xDC00 + (character & 0x3FF));
    }
}

void StyledJsonWriter::writeUnit(unsigned unit) {
    static constexpr char digits[] = "0123456789ABCDEF";
    text_ += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) text_ += digits[unit >> shift & 0xF];
}

void StyledJsonWriter::startLine() {
    if (indent_ == 0) return;
    text_ += '\n';
    text_.append(indent_ * std::min(open_.size(), deepestIndent), ' ');
}

}  // namespace nxPLST::impl
