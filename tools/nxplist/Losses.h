// Reports what is lost between a text, a tree and another form.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "plst/Item.h"
#include "plst/JsonReport.h"

namespace nxplist {

/// Prints a line on standard error for each loss. `name` is the document's name.
void reportLosses(std::string const& name, nxPLST::JsonReport const& report);

/// Prints a line on standard error for each of the first 100 texts and keys that packets cut at a NUL, and the number
/// of further ones. Returns the total number. A shared item counts once, at its first place.
std::uint64_t reportCutTexts(std::string const& name, nxPLST::Item const* root);

/// The path of the first text or key that is not UTF-8; empty if all are.
std::string pathOfBrokenText(nxPLST::Item const* root);

/// Requires: valid JSON.
[[nodiscard]] bool hasComments(std::string_view json);

/// "FILE:LINE:COLUMN: reason"
std::string located(std::string const& name, nxPLST::JsonLocation const& location, std::string_view reason);

}  // namespace nxplist
