// Finds the differences between two trees.
#pragma once

#include <functional>
#include <string>

#include "plst/Item.h"

namespace nxplist {

/// Calls `report` with a line for each difference, in the order of the first tree, until it returns false. Numbers are
/// equal if they compare equal or are both not-a-number. Either tree may be null. `spell` writes the values.
void compareTrees(nxPLST::Item const* first, nxPLST::Item const* second,
                  std::function<bool(std::string const& line)> const& report,
                  std::string (*spell)(nxPLST::Item const*));

/// A value as JSON on one line; "null" for none.
std::string inFull(nxPLST::Item const* item);
/// The same, but shows only the size of a container.
std::string brief(nxPLST::Item const* item);

}  // namespace nxplist
