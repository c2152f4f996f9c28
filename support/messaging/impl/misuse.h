// Reports mistakes of the host in debug builds.
#pragma once

#include "foundation/urOS/AppOutput.h"

namespace nxSupport::impl {

#if defined(NDEBUG)
inline constexpr bool debugBuild = false;
#else
inline constexpr bool debugBuild = true;
#endif

/// Prints one line on the application output in debug builds; does nothing in others.
inline void reportMisuse([[maybe_unused]] char const* what) {
    if constexpr (debugBuild) urOS::AppOutput::getInstance().print("%s\n", what);
}

}  // namespace nxSupport::impl
