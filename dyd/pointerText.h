// Passes pointers as text items.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "plst/Item.h"

namespace nxDYD {

/// A new text item that represents the pointer within this process. It does not describe the target.
[[nodiscard]] NX_API ur::Reference<nxPLST::Item const> pointerToString(void const* pointer);

/// The pointer for a text made by `pointerToString`; null when the item is null or not such a text.
[[nodiscard]] NX_API void* stringToPointer(ur::Reference<nxPLST::Item const> const& item);

}  // namespace nxDYD
