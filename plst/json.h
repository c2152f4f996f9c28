// Item trees as JSON text: a dump for people, and strict JSON both ways.
#pragma once

#include "foundation/urString/CString.h"
#include "foundation/urString/IString.h"
#include "plst/Item.h"

namespace nxPLST {

/// The readable dump: members on lines of their own, arrays of plain values on one, numbers with six significant
/// digits, texts between quotes as they are. For people and logs: it need not be valid JSON. "{}" for a null item.
/// Lines are no longer indented where that would take more than 64 MiB and sixteen times the rest of the text.
NX_API urString::CString asJSON(ur::Reference<Item const> item);

/// Puts the text of `asJSON` into the file at `path`, for a null item just a line feed. False when the file cannot
/// be opened or written; a file that was there before then stays as it is. The file is replaced, or overwritten in
/// place where replacing is impossible or would change more than the content (`urOS::AtomicFile` says when).
[[nodiscard]] NX_API bool outputJSON(urString::IString const& path, ur::Reference<Item const> item);

/// Appends strict JSON, indented, a null item or element as `null`. Numbers have up to twenty significant digits,
/// which give the same doubles back. False for a NaN, an infinity or more than 127 levels of nesting; what was
/// written up to there then stays appended.
[[nodiscard]] NX_API bool convertToJSON(urString::CString& text, ur::Reference<Item const> item);

/// Reads the one value that is all of `text`: JSON in UTF-8, comments allowed. `null` is no item: it is left out of
/// arrays and dictionaries, and alone gives a null `out`. Of a repeated key, the last value stays. False when
/// `text` is anything else, or holds a whole number outside of signed 64 bits or a number too large for a double;
/// `out` then keeps its value. plst/JsonReport.h has forms of these that say what was wrong, and where.
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, urString::CString const& text);
[[nodiscard]] NX_API bool convertFromJSON(ur::Reference<Item>& out, char const* text, unsigned int length);

}  // namespace nxPLST
