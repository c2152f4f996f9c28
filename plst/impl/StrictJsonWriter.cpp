// Strict JSON straight into the text, without the generator whose output it repeats.
#include "plst/impl/StrictJsonWriter.h"

#include <algorithm>
#include <cmath>

#include "plst/Bool.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/impl/JsonNumberWriter.h"
#include "plst/impl/textScan.h"

namespace nxPLST::impl {
namespace {

// Texts and separators are copied in blocks, so there must be room for one more than is written.
constexpr std::size_t textBlock = 16;
constexpr std::size_t separatorBlock = 32;
constexpr std::size_t longestIndent = 512;
constexpr std::size_t longestEscape = 6;

/// A comma, a line feed and more spaces than ever needed.
constexpr auto separator = [] {
    std::array<char, 2 + longestIndent + separatorBlock> text{};
    for (char& c : text) c = ' ';
    text[0] = ',';
    text[1] = '\n';
    return text;
}();

/// Enough for a separator, and behind it for any scalar but a text, and for a colon or brackets.
constexpr std::size_t itemRoom = separator.size() + numberRoom + 8;

constexpr int noItem = -1;

int kindOf(Item const* item) { return item ? item->type() : noItem; }

bool isContainer(int kind) { return kind == ArrayType || kind == DictionaryType; }
/// An item of an unknown kind is not written at all.
bool isKnown(int kind) { return kind >= noItem && kind <= DictionaryType; }

bool isRefused(Item const* item, int kind) {
    return kind == DoubleType && !std::isfinite(static_cast<Double const*>(item)->value());
}

char* putColon(char* to) {
    std::copy_n(": ", 2, to);
    return to + 2;
}

char* putEscape(char* to, char character) {
    static constexpr char digits[] = "0123456789ABCDEF";
    *to++ = '\\';
    switch (character) {
        case '"':
        case '\\': *to++ = character; return to;
        case '\b': *to++ = 'b'; return to;
        case '\f': *to++ = 'f'; return to;
        case '\n': *to++ = 'n'; return to;
        case '\r': *to++ = 'r'; return to;
        case '\t': *to++ = 't'; return to;
        default: break;
    }
    std::copy_n("u00", 3, to);
    to[3] = digits[character >> 4];
    to[4] = digits[character & 0xF];
    return to + 5;
}

/// Copies the text as far as no byte needs an escape, and moves both places on.
void copyPlain(char*& to, char const*& from, char const* end) {
    while (end - from >= static_cast<std::ptrdiff_t>(textBlock)) {
        std::memcpy(to, from, textBlock);
        int const run = runInSixteen<Stop::atEscapes>(from);
        to += run;
        from += run;
        if (run < static_cast<int>(textBlock)) return;
    }
    char const* const stop = runEnd<Stop::atEscapes>(from, end);
    std::memcpy(to, from, static_cast<std::size_t>(stop - from));
    to += stop - from;
    from = stop;
}

}  // namespace

/// Writes what stands before a value on a line of its own; behind it is room for most of them.
inline char* StrictJsonWriter::startLine(char* to, bool isFirst) {
    to = sink_.room(to, itemRoom);
    char const* const from = separator.data() + (isFirst ? 2 : 0);
    std::size_t const size = (isFirst ? 0 : 2) + indentStep * static_cast<std::size_t>(depth_);
    std::memcpy(to, from, separatorBlock);
    if (size > separatorBlock) [[unlikely]]
        std::memcpy(to + separatorBlock, from + separatorBlock, size - separatorBlock);
    return to + size;
}

/// Writes a text; behind it is room for a colon and most values.
inline char* StrictJsonWriter::putText(char* to, urString::CString const& text) {
    static_assert(sizeof text == textBlock);
    if (text.capacity() < sizeof text) [[likely]] {
        // It lies in its object, which is one block.
        std::memcpy(to + 1, text.data(), textBlock);
        auto const size = static_cast<int>(text.size());
        if (runInSixteen<Stop::atEscapes>(text.data()) >= size) [[likely]] {
            to[0] = '"';
            to[size + 1] = '"';
            return to + size + 2;
        }
    }
    return putAnyText(to, text.view());
}

inline char* StrictJsonWriter::putScalar(char* to, Item const* item, int kind) {
    if (kind == DoubleType) return writeExactNumber(to, static_cast<Double const*>(item)->value());
    if (kind == StringType) return putText(to, static_cast<String const*>(item)->value());
    bool const isFalse = kind == BoolType && !static_cast<Bool const*>(item)->value();
    std::memcpy(to, kind == noItem ? "null" : isFalse ? "false" : "true", 5);
    return to + (isFalse ? 5 : 4);
}

bool StrictJsonWriter::write(Item const* root) {
    char* const to = sink_.room(itemRoom);
    int const kind = kindOf(root);
    if (!isKnown(kind)) return true;
    if (isRefused(root, kind)) return false;
    if (isContainer(kind)) {
        open(to, *root);
    } else {
        sink_.advanceTo(putScalar(to, root, kind));
    }
    while (depth_ > 0) {
        if (frames_[depth_ - 1].children.inDictionary() ? !writeMembers() : !writeElements()) return false;
    }
    sink_.put('\n');
    return true;
}

/// Writes elements of the innermost container, an array, until one opens another or the last is written.
bool StrictJsonWriter::writeElements() {
    Frame& frame = frames_[depth_ - 1];
    ElementWalk next = frame.children.elements;
    bool isFirst = frame.isEmpty;
    char* to = sink_.room(itemRoom);
    while (!next.atEnd()) {
        Item const* const item = next.item();
        int const kind = kindOf(item);
        next.advance();
        if (!isKnown(kind)) continue;
        if (isRefused(item, kind)) return refuse(to);
        to = startLine(to, isFirst);
        isFirst = false;
        if (isContainer(kind)) {
            frame.children.elements = next;
            frame.isEmpty = false;
            return open(to, *item);
        }
        to = putScalar(to, item, kind);
    }
    close(to);
    return true;
}

/// The same for a dictionary.
bool StrictJsonWriter::writeMembers() {
    Frame& frame = frames_[depth_ - 1];
    MemberWalk next = frame.children.members;
    bool isFirst = frame.isEmpty;
    bool valueDue = false;
    char* to = sink_.room(itemRoom);
    for (; !next.atEnd(); next.advance()) {
        if (valueDue) [[unlikely]] {
            to = putMisplaced(to, next, valueDue);
            if (!to) return false;
            continue;
        }
        Item const* const item = next.item();
        int const kind = kindOf(item);
        to = putText(startLine(to, isFirst), next.key());
        isFirst = false;
        valueDue = !isKnown(kind);
        if (valueDue) continue;
        if (isRefused(item, kind)) return refuse(to);
        to = putColon(to);
        if (isContainer(kind)) {
            next.advance();
            frame.children.members = next;
            frame.isEmpty = false;
            return open(to, *item);
        }
        to = putScalar(to, item, kind);
    }
    close(to);
    return true;
}

/// A member after one whose value left no trace: its key takes that value's place, and its value must be a text to
/// take the place of a key.
char* StrictJsonWriter::putMisplaced(char* to, MemberWalk const& member, bool& valueDue) {
    to = putText(putColon(sink_.room(to, itemRoom)), member.key());
    Item const* const item = member.item();
    int const kind = kindOf(item);
    valueDue = isKnown(kind);
    if (!valueDue) return to;
    if (kind != StringType) {
        refuse(to);
        return nullptr;
    }
    return putScalar(startLine(to, false), item, kind);
}

bool StrictJsonWriter::open(char* to, Item const& container) {
    if (depth_ + 1 >= depthLimit) return refuse(to);
    bool const isArray = container.type() == ArrayType;
    *to++ = isArray ? '[' : '{';
    *to++ = '\n';
    sink_.advanceTo(to);
    frames_[depth_++] = {isArray ? ChildWalk(static_cast<Array const&>(container))
                                 : ChildWalk(static_cast<Dictionary const&>(container)),
                         true};
    return true;
}

void StrictJsonWriter::close(char* to) {
    bool const inDictionary = frames_[--depth_].children.inDictionary();
    to = sink_.room(to, itemRoom);
    *to++ = '\n';
    to = startLine(to, true);
    *to++ = inDictionary ? '}' : ']';
    sink_.advanceTo(to);
}

char* StrictJsonWriter::putAnyText(char* to, std::string_view text) {
    char const* from = text.data();
    char const* const end = from + text.size();
    to = sink_.room(to, text.size() + textBlock + itemRoom);
    *to++ = '"';
    copyPlain(to, from, end);
    while (from != end) [[unlikely]] {
            to = putEscape(sink_.room(to, static_cast<std::size_t>(end - from) + longestEscape + itemRoom), *from);
            ++from;
            copyPlain(to, from, end);
        }
    *to++ = '"';
    return to;
}

bool StrictJsonWriter::refuse(char* to) {
    sink_.advanceTo(to);
    return false;
}

}  // namespace nxPLST::impl
