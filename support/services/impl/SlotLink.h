// Lets cursors detect whether their slot still exists.
#pragma once

#include "foundation/ur/ReferenceCount.h"

namespace nxSupport {

class CursorSlot;

namespace impl {

/// Shared by a slot and all cursors created for it.
struct SlotLink : ur::ReferenceCount {
    explicit SlotLink(CursorSlot& to) noexcept : slot(&to) {}

    CursorSlot* slot;  ///< null after the slot was destroyed
};

}  // namespace impl
}  // namespace nxSupport
