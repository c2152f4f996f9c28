// Checks the encoding of bytes.
#pragma once

#include <string_view>

#include "foundation/ur/Export.h"

namespace urString {

/// Whether the bytes are well-formed UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF.
[[nodiscard]] NX_API bool isUtf8(std::string_view bytes) noexcept;

}  // namespace urString
