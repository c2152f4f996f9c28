// Changes one place of a tree.
#pragma once

#include <string>

#include "plst/Path.h"

namespace nxplist {

// Only the place at `path` changes: shared items on the way to it are copied, one level each. If the place does not
// exist, the functions return false, set `error` and leave the tree unchanged.

/// Puts `value` there. The last step may be a new key, or the index after the last element.
bool setAt(ur::Reference<nxPLST::Item>& root, nxPLST::Path const& path, ur::Reference<nxPLST::Item> value,
           std::string& error);
/// Removes the item there. The root cannot be removed.
bool deleteAt(ur::Reference<nxPLST::Item>& root, nxPLST::Path const& path, std::string& error);

}  // namespace nxplist
