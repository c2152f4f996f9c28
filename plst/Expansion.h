// The size of a tree after copying its shared items.
#pragma once

#include <cstdint>

#include "plst/Item.h"

namespace nxPLST {

/// The size of a tree when each shared item is written at every place that refers to it, as JSON and `clone` do.
///
/// In a packet file of some hundred bytes, each array can hold the next one twice, so that the tree exceeds any memory.
/// Check this before copying a tree from an untrusted source. Numbers stop at the largest value.
struct Expansion {
    std::uint64_t items = 0;
    std::uint64_t textBytes = 0;     ///< of the text of `convertToJSON`, without its limit of depth
    std::uint64_t ownTextBytes = 0;  ///< of these, without what items add where they occur again
    bool shares = false;             ///< whether an item occurs several times in the tree
};

/// The default limit of the JSON writers for the text of a tree that shares items, in bytes.
inline constexpr std::uint64_t mostExpandedText = std::uint64_t(256) << 20;

/// Takes time and memory in proportion to the tree itself. Null has only the size of its text.
[[nodiscard]] NX_API Expansion expansionOf(Item const* root);

}  // namespace nxPLST
