// Paths to values in a tree: .countries[3].name
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "plst/casts.h"

namespace nxPLST {

/// The keys and indexes from the root to a value. A negative index counts from the end.
using Path = std::vector<std::variant<std::string, long>>;

/// Empty when `text` is not a path; `error` then names the reason and the position. The root is "."; keys with
/// characters other than letters, digits, `_`, `-` and non-ASCII characters are quoted, with JSON escape sequences:
/// `."two words"` or `["two words"]`.
[[nodiscard]] NX_API std::optional<Path> parsePath(std::string_view text, std::string& error);

/// A sequence of paths; each starts from any child of the value that the previous one leads to.
using Pattern = std::vector<Path>;

/// The same for a path in which `[*]` may stand for every element or member: `.countries[*].name`.
[[nodiscard]] NX_API std::optional<Pattern> parsePattern(std::string_view text, std::string& error);
/// All values that match the pattern, in tree order. A value that occurs several times is returned for each place.
[[nodiscard]] NX_API std::vector<ur::Reference<Item const>> followAll(ur::Reference<Item const> const& root,
                                                                      Pattern const& pattern);

/// The value at `path`, or null; `error` then names the first missing part.
[[nodiscard]] NX_API ur::Reference<Item const> follow(ur::Reference<Item const> root, Path const& path,
                                                      std::string& error);

/// The value at `path`; null when there is none, or when `path` is invalid.
[[nodiscard]] NX_API ur::Reference<Item> at(ur::Reference<Item> const& root, std::string_view path);
[[nodiscard]] NX_API ur::Reference<Item const> at(ur::Reference<Item const> const& root, std::string_view path);

template <impl::ItemReference T>
[[nodiscard]] auto at(T const& root, std::string_view path) {
    return at(ur::Reference<impl::PlainItem<T>>(root), path);
}

/// The text of one step of a path.
[[nodiscard]] NX_API std::string stepText(Path::value_type const& step);
/// `.key`, quoted if a bare key could not be parsed again.
[[nodiscard]] NX_API std::string keyText(std::string_view key);
/// `[index]`.
[[nodiscard]] NX_API std::string indexText(long index);

}  // namespace nxPLST
