// What scripts see of the network.
#pragma once

#include "foundation/nxRFL/Database.h"
#include "foundation/ur/Export.h"

namespace nxNet {

/// Registers buffers, connections, managers and requests, and the table of functions "urThread". Scripts get no
/// manager by it: the host hands them its own. Doing so again changes nothing. Requires: `database` is not null.
NX_API void initializeReflection(nxRFL::Database* database);

}  // namespace nxNet
