// The message that comes before cached resources are cleared.
#pragma once

#include "foundation/ur/Export.h"
#include "support/messaging/Broadcaster.h"

namespace nxSupport {

/// Tells modules to drop and unlock what they hold of the resource cache, so that it can be cleared.
class NX_API PreClearResourcesMsg : public Broadcaster::Message {
public:
    PreClearResourcesMsg() noexcept = default;
};

}  // namespace nxSupport
