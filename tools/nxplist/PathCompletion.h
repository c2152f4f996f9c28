// Completes paths on the command line.
#pragma once

#include <span>
#include <string_view>

namespace nxplist {

/// Prints, one per line, the paths in a command's file that begin with `text` and have one step more than its complete
/// steps. `before` holds the words between the command and `text`, including options. Prints nothing if `text` is not
/// in the place of a path, or if the file cannot be read, because an error would disturb the user's typing.
void printPathCompletions(std::string_view text, std::string_view command, std::span<char const* const> before);

}  // namespace nxplist
