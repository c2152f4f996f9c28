// Registers the network's classes for scripts.
#pragma once

#include "foundation/nxRFL/Database.h"
#include "foundation/ur/Export.h"

namespace nxNet {

/// Registers buffers, connections, managers and requests, and the table of functions "urThread". Scripts get no manager
/// from this; the host passes them its own. A second call changes nothing. Requires: `database` is not null.
NX_API void initializeReflection(nxRFL::Database* database);

}  // namespace nxNet
