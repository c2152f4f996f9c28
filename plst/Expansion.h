// How large a tree is once its shared items are written out.
#pragma once

#include <cstdint>

#include "plst/Item.h"

namespace nxPLST {

/// The size of a tree when each shared item is written out at every place that refers to it, as JSON and `clone` do.
///
/// A packet file of some hundred bytes can hold a tree that comes to more than any memory: each array holds the next
/// one twice. Ask before copying a tree of unknown origin. Numbers stop at the largest.
struct Expansion {
    std::uint64_t items = 0;
    std::uint64_t textBytes = 0;  ///< of the text of `convertToJSON`, were there no limit to its depth
    bool shares = false;          ///< an item has several places in the tree
};

/// The default limit of the JSON writers for the text of a tree that shares items, in bytes.
inline constexpr std::uint64_t mostExpandedText = std::uint64_t(256) << 20;

/// Takes time and memory in proportion to the tree as it is. Nothing for null but its text.
[[nodiscard]] NX_API Expansion expansionOf(Item const* root);

}  // namespace nxPLST
