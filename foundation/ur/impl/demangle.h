// Names as they read in source.
#pragma once

#include <string>

namespace ur::impl {

/// The name that the platform's linker spells `name`; `name` itself where that is unknown.
[[nodiscard]] std::string demangle(char const* name);

}  // namespace ur::impl
