// What stands between the quotes of a JSON text.
#pragma once

#include <string>

namespace nxPLST::impl {

/// The length of the UTF-8 sequence that begins at `at`, or 0 when none does. As yajl does, it lets longer forms
/// than needed pass, and surrogates. Requires: at least one byte before `end`.
[[nodiscard]] int utf8Length(char const* at, char const* end) noexcept;

/// Appends what the escape sequence at `at` means and gives its end. Null when it is none, or half of a surrogate
/// pair. Requires: a backslash at `at`.
char const* readEscape(char const* at, char const* end, std::string& text);

}  // namespace nxPLST::impl
