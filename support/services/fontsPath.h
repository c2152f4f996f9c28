// Finds the system's fonts folder.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urOS/Filename.h"

namespace nxSupport {

/// The system's fonts folder; empty if there is none.
[[nodiscard]] NX_API urOS::Filename getFontsPath();

}  // namespace nxSupport
