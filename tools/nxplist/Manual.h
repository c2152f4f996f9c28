// Help, manual page and shell completion, generated from the tables of commands and options.
#pragma once

#include <cstdio>
#include <string_view>

#include "tools/nxplist/commands.h"

namespace nxplist {

struct OptionText {
    std::string_view name;      // "--to"
    std::string_view argument;  // "FORM", empty for a switch
    std::string_view values;    // words offered by completion, separated by spaces
    std::string_view commands;  // commands that take it, separated by spaces
    std::string_view summary;
};

/// Null if no option has that name.
OptionText const* findOption(std::string_view name);
[[nodiscard]] bool takes(Command const& command, OptionText const& option);

void printHelp(std::FILE* out);
/// The manual page in man(7) markup.
void printManPage(std::FILE* out);
/// The completion script for bash.
void printCompletion(std::FILE* out);

}  // namespace nxplist
