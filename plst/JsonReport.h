// Reading JSON with an account of what was wrong, or what was lost.
#pragma once

#include <cstddef>

#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "plst/json.h"

namespace nxPLST {

/// A place in a JSON text.
struct JsonLocation {
    std::size_t offset = 0;  ///< in bytes from the start of the text
    std::size_t line = 1;    ///< lines end with line feeds
    std::size_t column = 1;  ///< in characters, of which a tab is one; a stray byte of broken UTF-8 is one too
};

/// Something in a JSON text that its tree does not hold.
struct JsonLoss {
    enum class Kind {
        nullValue,       ///< a null, which has no item
        repeatedKey,     ///< a member whose key comes again later in the same object
        roundedInteger,  ///< a whole number that no double is equal to; the nearest one was taken
    };

    Kind kind;
    JsonLocation location;
    /// From the root, as in `.countries[3].name`; a key that is no word stands in quotation marks, and an element's
    /// index counts the nulls before it. One of more than `longestPath` bytes is cut and ends in "...".
    urString::CString path;

    static constexpr std::size_t longestPath = 1000;
};

/// What reading a JSON text has to tell besides the tree.
struct JsonReport {
    /// Why the text was refused, in a few words such as "expected ',' or ']' in an array". Empty after success.
    urString::CString reason;
    /// The first byte at which no JSON text could go on so, or the start of the number that was refused.
    JsonLocation location;

    /// What a text that was read has lost, in the order of the text: the first `mostLosses` of them.
    ur::vector<JsonLoss> losses;
    std::size_t lossCount = 0;  ///< with those that are not in `losses`

    static constexpr std::size_t mostLosses = 100;
};

/// The same results as without a report, which is filled anew.
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, urString::CString const& text, JsonReport& report);
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, char const* text, unsigned int length,
                                          JsonReport& report);

/// "null has no item", "repeated key" or "rounded integer".
NX_API char const* describe(JsonLoss::Kind kind) noexcept;

}  // namespace nxPLST
