// Messages to developers about changes that cannot be undone.
#pragma once

#include "foundation/nxTXN/Object.h"

namespace nxTXN::impl {

enum class Unrecorded { outside, constant };

/// Says, once per class of object and reason, that a change was applied and not recorded. Silent in release builds.
void reportUnrecorded(Object const& object, Unrecorded reason);

}  // namespace nxTXN::impl
