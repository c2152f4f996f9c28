// Writes JSON in a given style.
#include "plst/impl/json/StyledJsonWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "foundation/urString/utf8.h"
#include "plst/impl/json/JsonText.h"
#include "plst/visit.h"

namespace nxPLST::impl {
namespace {

// Without limits, indentation would grow with the square of the depth, and with any width that a script asks for.
constexpr std::size_t deepestIndent = 127;
constexpr std::size_t freeIndentation = std::size_t(64) << 20;
constexpr std::size_t indentationPerByte = 16;

}  // namespace

StyledJsonWriter::StyledJsonWriter(urString::CString& text, JsonStyle const& style)
    : sink_(text),
      before_(sink_.size()),
      indent_(style.indent),
      asciiOnly_(style.asciiOnly),
      refuseNulls_(style.refuseNulls),
      charge_(style.charge),
      guard_(style.mostExpandedBytes) {}

bool StyledJsonWriter::write(Item const* root) {
    guard_.watch(root);
    if (!writeItem(root)) return false;
    while (!open_.empty()) {
        if (!writeNext()) return false;
    }
    return guard_.allows(written(), nullptr);
}

void StyledJsonWriter::chargeFor(std::size_t capacity) {
    if (!charge_ || capacity <= charged_) return;
    charge_->add(capacity - charged_);
    charged_ = capacity;
}

/// Writes the next child of the innermost container, or closes it.
bool StyledJsonWriter::writeNext() {
    ChildWalk& children = open_.back();
    if (children.atEnd()) {
        char const closing = children.inDictionary() ? '}' : ']';
        open_.pop_back();
        if (!isFirst_) startLine();
        isFirst_ = false;
        sink_.append(1, closing);
        return true;
    }
    if (!isFirst_) sink_.append(1, ',');
    isFirst_ = false;
    startLine();
    Item const* item = nullptr;
    if (children.inDictionary()) {
        writeText(children.members.key());
        sink_.append(indent_ > 0 ? ": " : ":");
        item = children.members.item();
        children.members.advance();
    } else {
        item = children.elements.item();
        children.elements.advance();
    }
    return writeItem(item);
}

bool StyledJsonWriter::writeItem(Item const* item) {
    if (!guard_.allows(written(), item)) return false;
    chargeFor(sink_.capacity() - before_);
    if (!item) {
        sink_.append("null");
        return !refuseNulls_;
    }
    return visit(
        *item, [this](Bool const& truth) { return sink_.append(truth.value() ? "true" : "false"), true; },
        [this](Double const& number) { return writeNumber(number.value()); },
        [this](String const& text) { return writeText(text.value()), true; },
        [this](Array const& array) { return open(array, '['); },
        [this](Dictionary const& dictionary) { return open(dictionary, '{'); });
}

template <class Container>
bool StyledJsonWriter::open(Container const& container, char opening) {
    sink_.append(1, opening);
    open_.emplace_back(container);
    isFirst_ = true;
    return true;
}

/// The reader uses 64 bits for whole numbers: larger ones need an exponent, and -0 a fraction.
bool StyledJsonWriter::writeNumber(double value) {
    if (!std::isfinite(value)) return false;
    if (value == 0 && std::signbit(value)) {
        sink_.append("-0.0");
        return true;
    }
    char digits[32];
    auto const format = std::fabs(value) < 0x1p63 ? std::chars_format::general : std::chars_format::scientific;
    auto const isWhole = std::fabs(value) <= 0x1p53 && std::trunc(value) == value;
    auto const [end, problem] = isWhole ? std::to_chars(digits, digits + sizeof digits, static_cast<long long>(value))
                                        : std::to_chars(digits, digits + sizeof digits, value, format);
    sink_.append({digits, end});
    return problem == std::errc();
}

/// Invalid UTF-8 becomes U+FFFD, since no reader would accept it.
void StyledJsonWriter::writeText(urString::CString const& text) {
    char const* const begin = text.data();
    char const* const end = begin + text.size();
    char const* const special = runEnd<Stop::atEscapesAndUtf8>(begin, end);
    sink_.append(1, '"');
    if (special == end) {
        sink_.append(text.view());
    } else if (!asciiOnly_ && urString::isUtf8({special, end})) {
        writeValid(text.view());
    } else {
        writeCharacters(text.view());
    }
    sink_.append(1, '"');
}

void StyledJsonWriter::writeValid(std::string_view text) {
    char const* at = text.data();
    char const* const end = at + text.size();
    while (at != end) {
        char const* const stop = runEnd<Stop::atEscapes>(at, end);
        sink_.append({at, stop});
        if (stop != end) writeAscii(*stop);
        at = stop == end ? end : stop + 1;
    }
}

void StyledJsonWriter::writeCharacters(std::string_view text) {
    urString::IString const characters(text, urString::Encoding::utf8);
    for (char32_t const character : characters.view()) {
        if (character < 0x80) {
            writeAscii(static_cast<char>(character));
        } else if (asciiOnly_) {
            writeUnits(character);
        } else {
            sink_.append(urString::IString(std::u32string_view(&character, 1)).asUTF8().view());
        }
    }
}

void StyledJsonWriter::writeAscii(char character) {
    if (character >= ' ' && character != '"' && character != '\\') {
        sink_.append(1, character);
        return;
    }
    char escape[longestEscape];
    sink_.append({escape, putEscape(escape, character)});
}

/// Writes a character as one escape sequence, or as a surrogate pair.
void StyledJsonWriter::writeUnits(char32_t character) {
    char escapes[2 * longestEscape];
    char* end = escapes;
    if (character >= 0x10000) {
        end = putUnit(end, 0xD7C0 + (character >> 10));
        character = 0xDC00 + (character & 0x3FF);
    }
    sink_.append({escapes, putUnit(end, character)});
}

void StyledJsonWriter::startLine() {
    if (indent_ == 0) return;
    sink_.append(1, '\n');
    std::size_t const width = indent_ * std::min(open_.size(), deepestIndent);
    if (indented_ + width > freeIndentation + indentationPerByte * (written() - indented_)) return;
    indented_ += width;
    chargeFor(written() + width);
    sink_.append(width, ' ');
}

}  // namespace nxPLST::impl
