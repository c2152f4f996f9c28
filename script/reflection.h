// Registers the support classes for scripts.
#pragma once

#include "foundation/ur/Export.h"
#include "support/messaging/InitializeReflectionMsg.h"

namespace nxSupport {

/// Registers transactions, contexts, domains, data sinks, registries, the table of functions "nxSupport", and
/// everything of `nxNet` in the message's database. A second call changes nothing.
NX_API void registerReflection(InitializeReflectionMsg& message);

}  // namespace nxSupport
