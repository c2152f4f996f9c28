// Where the histories say what they do.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urOS/DebugChannel.h"

namespace nxTXN {

/// The channel of all managers of the process; disabled at first. The same thread as the managers.
[[nodiscard]] NX_API urOS::DebugChannel& debugChannel();

}  // namespace nxTXN
