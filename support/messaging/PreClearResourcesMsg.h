// The message sent before cached resources are cleared.
#pragma once

#include "foundation/ur/Export.h"
#include "support/messaging/Broadcaster.h"

namespace nxSupport {

/// Asks modules to drop and unlock the cached resources that they hold, so that the cache can be cleared.
class NX_API PreClearResourcesMsg : public Broadcaster::Message {
public:
    PreClearResourcesMsg() noexcept = default;
};

}  // namespace nxSupport
