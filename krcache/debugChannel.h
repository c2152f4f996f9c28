// Where the cache says what it does.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urOS/DebugChannel.h"

namespace urKRCache {

/// The channel of all caches of the process; disabled at first. The same thread as the managers.
[[nodiscard]] NX_API urOS::DebugChannel& debugChannel();

}  // namespace urKRCache
