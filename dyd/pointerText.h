// Pointers as items.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "plst/Item.h"

namespace nxDYD {

/// A new text item that stands for the pointer within this process. It says nothing about what is pointed at.
[[nodiscard]] NX_API ur::Reference<nxPLST::Item const> pointerToString(void const* pointer);

/// The pointer that a text made by `pointerToString` stands for; null when the item is null or no such text.
[[nodiscard]] NX_API void* stringToPointer(ur::Reference<nxPLST::Item const> const& item);

}  // namespace nxDYD
