// What a path on the command line may go on with.
#pragma once

#include <string>
#include <string_view>

namespace nxplist {

/// Prints, a line each, the paths into the file that begin with `text` and have one step more than its complete ones.
/// Prints nothing when there are none or the file cannot be read: nobody reads errors while he types.
void printPathCompletions(std::string const& file, std::string_view text);

}  // namespace nxplist
