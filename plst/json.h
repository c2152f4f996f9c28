// Item trees as JSON text: a dump for people, and strict JSON both ways.
#pragma once

#include <string>
#include <utility>

#include "foundation/urString/CString.h"
#include "foundation/urString/IString.h"
#include "plst/Expansion.h"
#include "plst/Item.h"

namespace nxPLST {

/// The readable dump: members on lines of their own, arrays of plain values on one, numbers with six significant
/// digits, texts between quotes as they are. For people and logs: it need not be valid JSON. "{}" for a null item.
/// Lines are no longer indented where that would take more than 64 MiB and sixteen times the rest of the text. Of a
/// tree that shares items and comes to strict JSON of more than `mostExpandedBytes`, a long dump ends early.
NX_API urString::CString asJSON(ur::Reference<Item const> item);
NX_API urString::CString asJSON(ur::Reference<Item const> item, std::uint64_t mostExpandedBytes);

/// Puts the text of `asJSON`, and all of it, into the file at `path`, for a null item just a line feed. False when the
/// file cannot be opened or written; a file that was there before then stays as it is. The file is replaced, or
/// overwritten in place where replacing is impossible or would change more than the content (`urOS::AtomicFile` says
/// when).
[[nodiscard]] NX_API bool outputJSON(urString::IString const& path, ur::Reference<Item const> item);

/// Appends strict JSON, indented, a null item or element as `null`. Numbers are as "%.20g" has them: they give the same
/// doubles back but for -0, which is read as 0, and whole numbers from 2^63 to below 10^20, which reading refuses.
/// False for a NaN, an infinity, more than 127 levels of nesting or a text that is too long for what the tree shares;
/// what was written up to there then stays appended.
[[nodiscard]] NX_API bool convertToJSON(urString::CString& text, ur::Reference<Item const> item);
[[nodiscard]] NX_API bool convertToJSON(urString::CString& text, ur::Reference<Item const> item,
                                        std::uint64_t mostExpandedBytes);

/// How JSON for programs is written.
struct JsonStyle {
    unsigned indent = 2;     ///< spaces for each level, at most 16; 0 for all on one line without spaces
    bool asciiOnly = false;  ///< other characters as escape sequences
    /// The longest text for a tree that shares items.
    std::uint64_t mostExpandedBytes = mostExpandedText;
};

/// Appends JSON of a tree of any depth, whole numbers up to 2^53 in full and others with the fewest digits that give
/// them back; `convertFromJSON` always reads the same doubles out of it. Null items and elements are `null`. Texts that
/// are no UTF-8 have U+FFFD in the place of what is none; lines beyond 127 levels are indented as those there. False
/// for a NaN, an infinity or a text that is too long for what the tree shares; `text` then stays as it was.
[[nodiscard]] NX_API bool writeJson(urString::CString& text, ur::Reference<Item const> item,
                                    JsonStyle const& style = {});

/// The same for standard strings.
[[nodiscard]] inline bool convertToJSON(std::string& text, ur::Reference<Item const> item) {
    urString::CString json;
    bool const isWhole = convertToJSON(json, std::move(item));
    text += json.view();
    return isWhole;
}
[[nodiscard]] inline bool writeJson(std::string& text, ur::Reference<Item const> item, JsonStyle const& style = {}) {
    urString::CString json;
    bool const isWritten = writeJson(json, std::move(item), style);
    text += json.view();
    return isWritten;
}

/// Reads the one value that is all of `text`: JSON in UTF-8, comments allowed. `null` is no item: it is left out of
/// arrays and dictionaries, and alone gives a null `out`. Of a repeated key, the last value stays. False when
/// `text` is anything else, or holds a whole number outside of signed 64 bits or a number too large for a double;
/// `out` then keeps its value. plst/JsonReport.h has forms of these that say what was wrong, and where.
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, urString::CString const& text);
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, char const* text, unsigned int length);

}  // namespace nxPLST
