// Files with a JSON text on each line.
#pragma once

#include <string_view>

#include "foundation/urString/CString.h"
#include "plst/JsonReport.h"

namespace nxplist {

/// An array of the texts of all lines but blank ones. As `convertFromJSON` with a report, with places in the whole.
bool convertFromLines(ur::Reference<nxPLST::Item>& out, std::string_view text, nxPLST::JsonReport& report);

/// Appends the elements of an array, or a root of another kind, one to a line. As `writeJson`; `style.indent` plays no
/// part.
bool writeLines(urString::CString& text, ur::Reference<nxPLST::Item const> const& root, nxPLST::JsonStyle style);

}  // namespace nxplist
