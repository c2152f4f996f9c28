// Demangles names.
#pragma once

#include <string>

namespace ur::impl {

/// The source form of the linker name `name`; `name` itself if unknown.
[[nodiscard]] std::string demangle(char const* name);

}  // namespace ur::impl
