// Locks that end with the process.
#pragma once

#include "foundation/urOS/File.h"

namespace nxSupport::impl {

/// Marks an open file as in use until it is closed. False when it is in use through another opening, here or in another
/// process.
[[nodiscard]] bool lockFile(urOS::File const& file) noexcept;

}  // namespace nxSupport::impl
