// Paths that name a place in a tree: .countries[3].name
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "plst/Item.h"

namespace nxplist {

/// The keys and indexes from the root to a place. A negative index counts from the end.
using Path = std::vector<std::variant<std::string, long>>;

/// Nothing when `text` is no path; `error` then says why and where.
std::optional<Path> parsePath(std::string_view text, std::string& error);

/// The value at `path`, or null; `error` then names the first part that is not there.
ur::Reference<nxPLST::Item const> follow(ur::Reference<nxPLST::Item const> root, Path const& path, std::string& error);

/// `.key`, quoted where a bare key would not read back.
std::string keyText(std::string_view key);
/// `[index]`.
std::string indexText(long index);

}  // namespace nxplist
