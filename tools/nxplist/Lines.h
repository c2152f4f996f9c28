// Files with one JSON text per line.
#pragma once

#include <string_view>

#include "foundation/urString/CString.h"
#include "plst/JsonReport.h"

namespace nxplist {

/// Reads each line that is not blank as an element of an array. As `convertFromJSON` with a report; positions are in
/// the whole text.
bool convertFromLines(ur::Reference<nxPLST::Item>& out, std::string_view text, nxPLST::JsonReport& report);

/// Appends the elements of an array, or a root of another type, one per line. As `writeJson`; ignores `style.indent`.
bool writeLines(urString::CString& text, ur::Reference<nxPLST::Item const> const& root, nxPLST::JsonStyle style);

}  // namespace nxplist
