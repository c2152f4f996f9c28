// Paths that name a place in a tree: .countries[3].name
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "plst/casts.h"

namespace nxPLST {

/// The keys and indexes from the root to a place. A negative index counts from the end.
using Path = std::vector<std::variant<std::string, long>>;

/// Nothing when `text` is no path; `error` then says why and where. The root is "."; keys of other characters than
/// letters, digits, `_`, `-` and those beyond ASCII stand in quotes, with the escape sequences of JSON: `."two words"`
/// or `["two words"]`.
[[nodiscard]] NX_API std::optional<Path> parsePath(std::string_view text, std::string& error);

/// Paths, each from any child of what the one before it leads to.
using Pattern = std::vector<Path>;

/// The same for a path in which `[*]` may stand for every element or member: `.countries[*].name`.
[[nodiscard]] NX_API std::optional<Pattern> parsePattern(std::string_view text, std::string& error);
/// All values that the pattern fits, in the order of the tree. One that is in several places comes for each.
[[nodiscard]] NX_API std::vector<ur::Reference<Item const>> followAll(ur::Reference<Item const> const& root,
                                                                      Pattern const& pattern);

/// The value at `path`, or null; `error` then names the first part that is not there.
[[nodiscard]] NX_API ur::Reference<Item const> follow(ur::Reference<Item const> root, Path const& path,
                                                      std::string& error);

/// The value at a path; null when nothing is there, or `path` is none.
[[nodiscard]] NX_API ur::Reference<Item> at(ur::Reference<Item> const& root, std::string_view path);
[[nodiscard]] NX_API ur::Reference<Item const> at(ur::Reference<Item const> const& root, std::string_view path);

template <impl::ItemReference T>
[[nodiscard]] auto at(T const& root, std::string_view path) {
    return at(ur::Reference<impl::PlainItem<T>>(root), path);
}

/// A step of a path as it is spelled.
[[nodiscard]] NX_API std::string stepText(Path::value_type const& step);
/// `.key`, quoted where a bare key would not read back.
[[nodiscard]] NX_API std::string keyText(std::string_view key);
/// `[index]`.
[[nodiscard]] NX_API std::string indexText(long index);

}  // namespace nxPLST
