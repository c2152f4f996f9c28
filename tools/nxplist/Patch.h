// Applies the differences that a comparison printed.
#pragma once

#include <string>
#include <string_view>

#include "tools/nxplist/Document.h"

namespace nxplist {

/// Changes the document by lines that `compareTrees` printed with values in full. Throws `Failure` with the first line
/// that does not fit; `name` is the name of the lines' input. The document is then unusable.
void applyDifferences(Document& document, std::string const& name, std::string_view lines);

}  // namespace nxplist
