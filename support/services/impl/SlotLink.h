// How cursors know whether their slot is still there.
#pragma once

#include "foundation/ur/ReferenceCount.h"

namespace nxSupport {

class CursorSlot;

namespace impl {

/// Shared by a slot and all cursors that were made for it.
struct SlotLink : ur::ReferenceCount {
    explicit SlotLink(CursorSlot& to) noexcept : slot(&to) {}

    CursorSlot* slot;  ///< null once the slot has gone
};

}  // namespace impl
}  // namespace nxSupport
