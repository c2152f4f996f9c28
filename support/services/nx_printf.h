// Prints formatted text on the application output.
#pragma once

#include <cstdarg>

#include "foundation/ur/Export.h"

namespace nxSupport {

/// Like `printf`, but prints on the application output. Main thread only.
[[gnu::format(printf, 1, 2)]] NX_API void nx_printf(char const* format, ...);
[[gnu::format(printf, 1, 0)]] NX_API void nx_vprintf(char const* format, va_list arguments);

}  // namespace nxSupport
