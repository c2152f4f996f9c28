// What scripts see of the support classes.
#pragma once

#include "foundation/ur/Export.h"
#include "support/messaging/InitializeReflectionMsg.h"

namespace nxSupport {

/// Registers the classes of transactions, contexts, domains, data sinks and registries, the table of functions
/// "nxSupport", and what `nxNet` shows, in the message's database. Doing so again changes nothing.
NX_API void registerReflection(InitializeReflectionMsg& message);

}  // namespace nxSupport
