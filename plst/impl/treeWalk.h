// Copying, comparing and destroying whole trees without recursion over their depth.
#pragma once

#include <vector>

#include "plst/Array.h"
#include "plst/Dictionary.h"

namespace nxPLST::impl {

/// A deep copy of a container and everything below it.
ur::Reference<Item> cloneTree(Item const& root);

/// Whether two trees have the same kinds, sizes and keys all the way down.
bool congruentTrees(Item const& a, Item const& b);

/// Whether two trees are congruent and have the same numbers, truth values and texts. What both share is passed over.
bool equalTrees(Item const& a, Item const& b);

/// Lets the children of a container go. Recursion is left to the destructors down to a fixed depth; what lies
/// deeper waits in a list that the outermost container of the tree empties.
void dismantle(ur::vector<ur::Reference<Item>>& children) noexcept;
void dismantle(Dictionary::Map& children) noexcept;

}  // namespace nxPLST::impl
