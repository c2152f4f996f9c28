// Reads JSON and reports faults and losses.
#pragma once

#include <cstddef>
#include <string_view>

#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "plst/json.h"

namespace nxPLST {

/// A position in a JSON text.
struct JsonLocation {
    std::size_t offset = 0;  ///< in bytes from the start of the text
    std::size_t line = 1;    ///< lines end with line feeds
    std::size_t column = 1;  ///< in characters; a tab counts as one, and so does a stray byte of invalid UTF-8
};

/// A value in a JSON text that its tree does not contain.
struct JsonLoss {
    enum class Kind {
        nullValue,       ///< a null, which has no item
        repeatedKey,     ///< a member whose key occurs again later in the same object
        roundedInteger,  ///< an integer that no double equals; the nearest double replaces it
    };

    Kind kind;
    JsonLocation location;
    /// From the root, as in `.countries[3].name`; a key that is not a plain word is quoted, and an element's index
    /// counts the nulls before it. A path longer than `longestPath` bytes is cut and ends in "...".
    urString::CString path;

    static constexpr std::size_t longestPath = 1000;
};

/// The result of reading a JSON text, except the tree.
struct JsonReport {
    /// Why the text was refused, in a few words such as "expected ',' or ']' in an array". Empty after success.
    urString::CString reason;
    /// The first byte at which no valid JSON could continue, or the start of the refused number.
    JsonLocation location;

    /// The losses in an accepted text, in text order: the first `mostLosses` of them.
    ur::vector<JsonLoss> losses;
    std::size_t lossCount = 0;  ///< includes those that are not in `losses`

    static constexpr std::size_t mostLosses = 100;
};

/// The same as without a report; overwrites `report`.
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, std::string_view text, JsonReport& report);
[[nodiscard]] inline bool convertFromJSON(ur::Reference<Item>& out, char const* text, JsonReport& report) {
    return convertFromJSON(out, urString::viewOf(text), report);
}
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, char const* text, unsigned int length,
                                          JsonReport& report);

/// "null has no item", "repeated key" or "rounded integer".
NX_API char const* describe(JsonLoss::Kind kind) noexcept;

}  // namespace nxPLST
