// Completes paths on the command line.
#pragma once

#include <string>
#include <string_view>

namespace nxplist {

/// Prints, one per line, the paths in the file that begin with `text` and have one step more than its complete steps.
/// Prints nothing if there are none or the file cannot be read, because an error would disturb the user's typing.
void printPathCompletions(std::string const& file, std::string_view text);

}  // namespace nxplist
