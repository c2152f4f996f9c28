// Copies, compares and destroys whole trees without recursion over their depth.
#pragma once

#include <vector>

#include "plst/Array.h"
#include "plst/Dictionary.h"

namespace nxPLST::impl {

/// A deep copy of a container and everything below it.
ur::Reference<Item> cloneTree(Item const& root);

/// Whether two trees have the same kinds, sizes and keys at all levels.
bool congruentTrees(Item const& a, Item const& b);

/// Whether two trees are congruent and have the same numbers, booleans and texts. Skips items that both share.
bool equalTrees(Item const& a, Item const& b);

/// Releases the children of a container. Destructors recurse down to a fixed depth; deeper containers wait in a list
/// that the outermost container of the tree empties.
void dismantle(ur::vector<ur::Reference<Item>>& children) noexcept;
void dismantle(Dictionary::Map& children) noexcept;

}  // namespace nxPLST::impl
