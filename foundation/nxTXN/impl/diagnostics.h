// Messages to developers about changes that cannot be undone.
#pragma once

#include "foundation/nxTXN/Object.h"

namespace nxTXN::impl {

/// Says on the debug channel, once per class of object and `where`, that a change was applied and not recorded.
void reportUnrecorded(Object const& object, char const* where);

}  // namespace nxTXN::impl
