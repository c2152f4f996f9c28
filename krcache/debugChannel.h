// The debug channel of the cache.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urOS/DebugChannel.h"

namespace urKRCache {

/// The channel of all caches of the process; disabled by default. Same thread as the managers.
[[nodiscard]] NX_API urOS::DebugChannel& debugChannel();

}  // namespace urKRCache
