// What is lost between a text, a tree and another form.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "plst/Item.h"
#include "plst/JsonReport.h"

namespace nxplist {

/// Prints a line on standard error for each loss of the document of that name.
void tellLosses(std::string const& name, nxPLST::JsonReport const& report);

/// Prints a line on standard error for each of the first hundred texts and keys that packets cut at a NUL, and how many
/// more there are. The result counts all. A shared item counts where it comes first.
std::uint64_t tellCutTexts(std::string const& name, nxPLST::Item const* root);

/// The path of the first text or key that is not UTF-8; empty when there is none.
std::string pathOfBrokenText(nxPLST::Item const* root);

/// Requires: valid JSON.
[[nodiscard]] bool hasComments(std::string_view json);

/// "FILE:LINE:COLUMN: reason"
std::string located(std::string const& name, nxPLST::JsonLocation const& location, std::string_view reason);

}  // namespace nxplist
