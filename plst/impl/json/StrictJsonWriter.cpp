// Writes strict JSON directly into the text, with the same output as yajl's generator.
#include "plst/impl/json/StrictJsonWriter.h"

#include <cmath>
#include <cstring>

#include "plst/Bool.h"
#include "plst/Double.h"
#include "plst/String.h"
#include "plst/impl/json/JsonNumberWriter.h"
#include "plst/impl/json/JsonText.h"

namespace nxPLST::impl {
namespace {

// Texts and indents are copied in blocks, so one more block than written must fit.
constexpr std::size_t textBlock = 16;
constexpr std::size_t indentBlock = 32;

/// Enough for the longest indent, a short text as a key, any scalar except a long text, brackets and separators.
constexpr std::size_t itemRoom = 512 + indentBlock + 2 * textBlock + numberRoom + 16;

constexpr int noItem = -1;

int kindOf(Item const* item) { return item ? item->type() : noItem; }

/// Null for a number without a JSON form.
char* putNumber(char* to, double value) { return std::isfinite(value) ? writeExactNumber(to, value) : nullptr; }

/// An item of an unknown kind is not written.
bool isKnown(int kind) { return kind >= noItem && kind <= DictionaryType; }

char* putWord(char* to, std::string_view word) {
    std::memcpy(to, word.data(), word.size());
    return to + word.size();
}
char* putColon(char* to) { return putWord(to, ": "); }
char* putSeparator(char* to) { return putWord(to, ",\n"); }

/// Copies the text up to the first byte that needs an escape, and advances both positions.
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

/// The position where the line ends if the next one is not written: removes a separator, keeps a bracket.
char* withoutSeparator(char* to) { return to[-2] == ',' ? to - 2 : to; }

}  // namespace

bool StrictJsonWriter::write(Item const* root) {
    int const kind = kindOf(root);
    if (!isKnown(kind)) return true;
    guard_.watch(root);
    char* const to = putValue(sink_.room(itemRoom), root, kind, 0);
    if (!to) return false;
    *to = '\n';
    sink_.advanceTo(to + 1);
    return guard_.allows(sink_.sizeAt(to + 1), nullptr);
}

/// Makes room for an item and writes the spaces before it.
inline char* StrictJsonWriter::startLine(char* to, std::size_t indent) {
    to = sink_.room(to, itemRoom);
    std::memset(to, ' ', indentBlock);
    if (indent > indentBlock) [[unlikely]]
        std::memset(to + indentBlock, ' ', indent - indentBlock);
    return to + indent;
}

/// After the text there is room for a colon and most values.
inline char* StrictJsonWriter::putText(char* to, urString::CString const& text) {
    static_assert(sizeof text == textBlock);
    std::string_view const view = text.view();
    // A short text lies inside its object, which is one block.
    bool const isShort = view.data() == reinterpret_cast<char const*>(&text);
    if (isShort && runInSixteen<Stop::atEscapes>(view.data()) >= static_cast<int>(view.size())) [[likely]] {
        to[0] = '"';
        std::memcpy(to + 1, view.data(), textBlock);
        to[view.size() + 1] = '"';
        return to + view.size() + 2;
    }
    return putAnyText(to, view);
}

/// Keys need no such check: there are no more of them than containers checked.
inline char* StrictJsonWriter::putString(char* to, String const& string) {
    if (string.value().size() > textBlock && !guard_.allows(sink_.sizeAt(to), &string)) [[unlikely]]
        return refuse(to);
    return putText(to, string.value());
}

inline char* StrictJsonWriter::putValue(char* to, Item const* item, int kind, std::size_t indent) {
    switch (kind) {
        case DoubleType: return putNumber(to, static_cast<Double const*>(item)->value());
        case StringType: return putString(to, *static_cast<String const*>(item));
        case BoolType: return putWord(to, static_cast<Bool const*>(item)->value() ? "true" : "false");
        case ArrayType: return putContainer(to, {'[', ']'}, *static_cast<Array const*>(item), indent);
        case DictionaryType: return putContainer(to, {'{', '}'}, *static_cast<Dictionary const*>(item), indent);
        default: return putWord(to, "null");
    }
}

template <class Container>
char* StrictJsonWriter::putContainer(char* to, Brackets brackets, Container const& container, std::size_t indent) {
    if (indent == deepestIndent || !guard_.allows(sink_.sizeAt(to), &container)) return refuse(to);
    *to++ = brackets.opening;
    *to++ = '\n';
    to = putChildren(to, container, indent + indentStep);
    if (!to) return nullptr;
    to = withoutSeparator(to);
    *to++ = '\n';
    to = startLine(to, indent);
    *to++ = brackets.closing;
    return to;
}

char* StrictJsonWriter::putChildren(char* to, Array const& array, std::size_t indent) {
    for (ur::Reference<Item> const& element : array.array()) {
        int const kind = kindOf(element.get());
        if (!isKnown(kind)) continue;
        char* const line = startLine(to, indent);
        to = putValue(line, element.get(), kind, indent);
        if (!to) return kind == DoubleType ? refuse(withoutSeparator(line - indent)) : nullptr;
        to = putSeparator(to);
    }
    return to;
}

char* StrictJsonWriter::putChildren(char* to, Dictionary const& dictionary, std::size_t indent) {
    bool valueDue = false;
    for (auto const& member : dictionary.dictionary()) {
        if (valueDue) [[unlikely]] {
            to = putMisplaced(to, member, indent, valueDue);
            if (!to) return nullptr;
            continue;
        }
        Item const* const item = member.second.get();
        int const kind = kindOf(item);
        char* const behindKey = putText(startLine(to, indent), member.first);
        valueDue = !isKnown(kind);
        to = valueDue ? behindKey : putValue(putColon(behindKey), item, kind, indent);
        if (!to) return kind == DoubleType ? refuse(behindKey) : nullptr;
        if (!valueDue) to = putSeparator(to);
    }
    return valueDue ? putSeparator(to) : to;
}

/// A member after one whose value was not written: its key takes that value's place, and its value must be a text to
/// take the place of a key.
char* StrictJsonWriter::putMisplaced(char* to, Dictionary::Map::value_type const& member, std::size_t indent,
                                     bool& valueDue) {
    to = putSeparator(putText(putColon(sink_.room(to, itemRoom)), member.first));
    int const kind = kindOf(member.second.get());
    valueDue = isKnown(kind);
    if (!valueDue) return to;
    if (kind != StringType) return refuse(to - 2);
    return putText(startLine(to, indent), static_cast<String const&>(*member.second).value());
}

char* StrictJsonWriter::putAnyText(char* to, std::string_view text) {
    char const* from = text.data();
    char const* const end = from + text.size();
    to = sink_.room(to, text.size() + textBlock + itemRoom);
    *to++ = '"';
    copyPlain(to, from, end);
    while (from != end) {
        to = putEscape(sink_.room(to, static_cast<std::size_t>(end - from) + longestEscape + itemRoom), *from);
        ++from;
        copyPlain(to, from, end);
    }
    *to++ = '"';
    return to;
}

char* StrictJsonWriter::refuse(char* to) {
    sink_.advanceTo(to);
    return nullptr;
}

}  // namespace nxPLST::impl
