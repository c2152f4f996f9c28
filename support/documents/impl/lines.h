// Lines of values in JSON.
#pragma once

#include <cstddef>
#include <string_view>

#include "plst/Path.h"

namespace nxSupport::impl {

/// The line, counted from 1, of the last key of `path` that the text has; 1 if it has none. For messages: reads the
/// whole text. Requires: the text is valid.
[[nodiscard]] std::size_t lineOf(std::string_view text, nxPLST::Path const& path);

}  // namespace nxSupport::impl
