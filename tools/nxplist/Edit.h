// Changing one place of a tree.
#pragma once

#include <string>

#include "plst/Path.h"

namespace nxplist {

// Only the place at `path` changes: items on the way to it that are in other places too are copied, not deeply. False
// when there is no such place, as `error` says; the tree is then as it was.

/// Puts `value` there. The last step may be a new key, or the index behind the last element.
bool setAt(ur::Reference<nxPLST::Item>& root, nxPLST::Path const& path, ur::Reference<nxPLST::Item> value,
           std::string& error);
/// Takes away what is there. The root stays.
bool deleteAt(ur::Reference<nxPLST::Item>& root, nxPLST::Path const& path, std::string& error);

}  // namespace nxplist
