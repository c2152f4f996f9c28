// Converts item trees to readable JSON dumps, and to and from strict JSON.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "foundation/ur/Account.h"
#include "foundation/urString/CString.h"
#include "foundation/urString/IString.h"
#include "plst/Expansion.h"
#include "plst/Item.h"

namespace nxPLST {

/// The readable dump: members on separate lines, arrays of plain values on one line, numbers with six significant
/// digits, texts in quotes without escapes. For people and logs: it may be invalid JSON. "{}" for a null item. Lines
/// are no longer indented once that would take more than 64 MiB and sixteen times the rest of the text. If a tree
/// shares items and its strict JSON exceeds `mostExpandedBytes`, a long dump ends early.
NX_API urString::CString asJSON(ur::Reference<Item const> item);
NX_API urString::CString asJSON(ur::Reference<Item const> item, std::uint64_t mostExpandedBytes);

/// Writes the complete text of `asJSON` into the file at `path`; only a line feed for a null item. False when the file
/// cannot be opened or written. The file is replaced as a whole, and stays unchanged on failure; or it is overwritten
/// in place where replacing is impossible or would change more than the content, and an error of the disk can leave a
/// mixture (see `urOS::AtomicFile`).
[[nodiscard]] NX_API bool outputJSON(urString::IString const& path, ur::Reference<Item const> item);

/// Appends strict JSON, indented, with a null item or element as `null`. Numbers have the form of "%.20g" and are read
/// back as the same doubles, except -0, which becomes 0, and integers from 2^63 to below 10^20, which reading refuses.
/// False for a NaN, an infinity, more than 127 levels of nesting, or a text that is too long because the tree shares
/// items; the part written before then stays appended.
[[nodiscard]] NX_API bool convertToJSON(urString::CString& text, ur::Reference<Item const> item);
[[nodiscard]] NX_API bool convertToJSON(urString::CString& text, ur::Reference<Item const> item,
                                        std::uint64_t mostExpandedBytes);

/// The format of JSON for programs.
struct JsonStyle {
    unsigned indent = 2;       ///< spaces per level; 0 writes one line without spaces
    bool asciiOnly = false;    ///< writes non-ASCII characters as escape sequences
    bool refuseNulls = false;  ///< makes a null item or element a failure, since reading drops it
    /// The longest text for a tree that shares items.
    std::uint64_t mostExpandedBytes = mostExpandedText;
    /// If set, the bytes of the text are added to this charge while it grows, and `writeJson` throws `ur::BudgetSpent`
    /// beyond its account's limit.
    ur::Charge* charge = nullptr;
};

/// Appends JSON of a tree of any depth, with integers up to 2^53 in full and other numbers with the fewest digits that
/// identify them; `convertFromJSON` always reads the same doubles. Null items and elements are `null`, which reading
/// drops. Bytes that are not UTF-8 become U+FFFD. Lines beyond 127 levels are indented like level 127, and no longer
/// once that would take more than 64 MiB and sixteen times the rest of the text. False for a NaN, an infinity, or a
/// text that is too long because the tree shares items; `text` then stays unchanged.
[[nodiscard]] NX_API bool writeJson(urString::CString& text, ur::Reference<Item const> item,
                                    JsonStyle const& style = {});

/// The same for standard strings.
[[nodiscard]] inline bool convertToJSON(std::string& text, ur::Reference<Item const> item,
                                        std::uint64_t mostExpandedBytes = mostExpandedText) {
    urString::CString json;
    bool const isWhole = convertToJSON(json, std::move(item), mostExpandedBytes);
    text += json.view();
    return isWhole;
}
[[nodiscard]] inline bool writeJson(std::string& text, ur::Reference<Item const> item, JsonStyle const& style = {}) {
    urString::CString json;
    bool const isWritten = writeJson(json, std::move(item), style);
    text += json.view();
    return isWritten;
}

/// Reads `text`, which must be a single value: JSON in UTF-8, comments allowed. `null` has no item: arrays and
/// dictionaries omit it, and alone it gives a null `out`. The last value of a repeated key stays. False when `text` is
/// anything else, or holds an integer outside of signed 64 bits or a number too large for a double; `out` then keeps
/// its value. plst/JsonReport.h has forms that report the fault and its position.
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, std::string_view text);
[[nodiscard]] inline bool convertFromJSON(ur::Reference<Item>& out, char const* text) {
    return convertFromJSON(out, urString::viewOf(text));
}
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, char const* text, unsigned int length);

}  // namespace nxPLST
