// Finding where two trees differ.
#pragma once

#include <functional>
#include <string>

#include "plst/Item.h"

namespace nxplist {

/// Calls `report` with a line for each place at which the trees differ, in the order of the first tree, until it
/// returns false. Numbers are the same when they compare equal or are both not-a-number; either tree may be null.
/// Values are written as `spell` does.
void compareTrees(nxPLST::Item const* first, nxPLST::Item const* second,
                  std::function<bool(std::string const& line)> const& report,
                  std::string (*spell)(nxPLST::Item const*));

/// A value as JSON on one line; "null" for none.
std::string inFull(nxPLST::Item const* item);
/// The same, but a container by its size.
std::string brief(nxPLST::Item const* item);

}  // namespace nxplist
