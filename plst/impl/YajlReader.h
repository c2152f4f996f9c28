// The reader that decides what JSON is.
#pragma once

#include <cstddef>

#include "plst/Item.h"

namespace nxPLST::impl {

/// What yajl makes of the text, comments allowed. False when it refuses it; `out` then keeps its value.
bool readWithYajl(ur::Reference<Item>& out, char const* text, std::size_t length);

}  // namespace nxPLST::impl
