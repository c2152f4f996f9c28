// Messages to developers about changes that cannot be undone.
#pragma once

#include "foundation/nxTXN/Object.h"

namespace nxTXN::impl {

/// Reports on the debug channel, once per class and `where`, that a change was applied but not recorded.
void reportUnrecorded(Object const& object, char const* where);

}  // namespace nxTXN::impl
