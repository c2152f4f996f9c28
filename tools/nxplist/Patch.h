// Applying what a comparison has printed.
#pragma once

#include <string>
#include <string_view>

#include "tools/nxplist/Document.h"

namespace nxplist {

/// Changes the document as the lines say that `compareTrees` has printed with values in full. Throws `Failure` with the
/// line, of the input called `name`, that does not fit; the document is then of no use.
void applyDifferences(Document& document, std::string const& name, std::string_view lines);

}  // namespace nxplist
