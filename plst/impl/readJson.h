// A JSON text as a tree, by whichever reader is right for it.
#pragma once

#include <string_view>

#include "plst/Item.h"

namespace nxPLST::impl {

enum class JsonReading {
    refused,       ///< nothing was read
    whole,         ///< the tree has everything that is in the text
    perhapsLossy,  ///< the tree may lack something
};

/// Puts the tree of `text` into `out`, unless the text is refused.
JsonReading readJson(ur::Reference<Item>& out, std::string_view text);

}  // namespace nxPLST::impl
