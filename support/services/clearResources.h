// Releasing cached memory.
#pragma once

#include "foundation/ur/Export.h"

namespace nxSupport {

/// Releases all cached memory that nobody locks: tells everybody who subscribes to `PreClearResourcesMsg` first, so
/// that they unlock what they can, then clears the cache. Locked resources stay, and all keys.
///
/// Uses the broadcaster and the cache manager of the current call information; without one of them it does without.
/// What a subscriber throws leaves at once, and nothing is cleared. Says what it does on `Debug_Resources`.
NX_API void clearResources();

}  // namespace nxSupport
