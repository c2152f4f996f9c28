// What a debug build says about mistakes of the host.
#pragma once

#include "foundation/urOS/AppOutput.h"

namespace nxSupport::impl {

#if defined(NDEBUG)
inline constexpr bool debugBuild = false;
#else
inline constexpr bool debugBuild = true;
#endif

/// Prints one line on the application output in a debug build, nothing in others.
inline void reportMisuse([[maybe_unused]] char const* what) {
    if constexpr (debugBuild) urOS::AppOutput::getInstance().print("%s\n", what);
}

}  // namespace nxSupport::impl
