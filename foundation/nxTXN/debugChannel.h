// The debug channel of histories.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urOS/DebugChannel.h"

namespace nxTXN {

/// The channel of all managers of the process, disabled by default. Use it on the managers' thread.
[[nodiscard]] NX_API urOS::DebugChannel& debugChannel();

}  // namespace nxTXN
