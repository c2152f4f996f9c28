// Releases cached memory.
#pragma once

#include "foundation/ur/Export.h"

namespace nxSupport {

/// Releases all cached memory that is not locked. First sends `PreClearResourcesMsg`, so that subscribers unlock what
/// they can, then clears the cache. Locked resources and all keys stay.
///
/// Uses the broadcaster and the cache manager of the current call information; skips the step whose service is missing.
/// An exception from a subscriber is passed on at once, and nothing is cleared. Prints its steps on `Debug_Resources`.
NX_API void clearResources();

}  // namespace nxSupport
