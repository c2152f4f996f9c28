// The one description of the program, from which help, manual page and shell completion are made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

namespace nxplist {

/// What the program ends with.
struct ExitCode {
    static constexpr int done = 0;
    static constexpr int negative = 1;  ///< differs, invalid, not there
    static constexpr int unusable = 2;
};

constexpr std::size_t anyNumber = SIZE_MAX;

struct CommandText {
    std::string_view name;
    std::string_view arguments;
    std::size_t least;  // how many arguments it takes
    std::size_t most;
    std::string_view summary;
    std::string_view details;
};

struct OptionText {
    std::string_view name;      // "--to"
    std::string_view argument;  // "FORM", empty for a switch
    std::string_view values;    // the words that completion offers, separated by spaces
    std::string_view commands;  // those that take it, separated by spaces
    std::string_view summary;
};

/// Null when there is no command of that name.
CommandText const* findCommand(std::string_view name);
/// Null when there is no option of that name.
OptionText const* findOption(std::string_view name);
[[nodiscard]] bool takes(CommandText const& command, OptionText const& option);

void printHelp(std::FILE* out);
/// The manual page in man(7) markup.
void printManPage(std::FILE* out);
/// The completion script for bash.
void printCompletion(std::FILE* out);

}  // namespace nxplist
