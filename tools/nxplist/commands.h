// The commands of the program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace nxplist {

struct Options;

/// The program's exit codes.
struct ExitCode {
    static constexpr int done = 0;
    static constexpr int negative = 1;  ///< differs, invalid, or not found
    static constexpr int unusable = 2;
};

constexpr std::size_t anyNumber = SIZE_MAX;

struct Command {
    std::string_view name;
    int (*run)(Options const&);  // returns the exit code; throws `UsageError` or `Failure`
    std::string_view arguments;
    std::size_t least;  // the fewest arguments that it takes
    std::size_t most;
    std::string_view summary;
    std::string_view details;
};

std::span<Command const> commands();
/// Null if no command has that name.
Command const* findCommand(std::string_view name);

}  // namespace nxplist
