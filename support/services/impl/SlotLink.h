// How cursors know whether their slot is still there.
#pragma once

#include "support/services/Cursor.h"

namespace nxSupport {

/// Shared by a slot and all cursors that were made for it.
struct Cursor::SlotLink : ur::ReferenceCount {
    explicit SlotLink(CursorSlot& to) noexcept : slot(&to) {}

    CursorSlot* slot;  ///< null once the slot has gone
};

}  // namespace nxSupport
