// The commands of the program.
#pragma once

#include <span>

namespace nxplist {

struct Options;

/// The program's exit codes.
struct ExitCode {
    static constexpr int done = 0;
    static constexpr int negative = 1;  ///< differs, invalid, or not found
    static constexpr int unusable = 2;
};

/// Options of some commands. Every command takes --from, --lines and --strict.
struct Takes {
    static constexpr unsigned to = 1;
    static constexpr unsigned raw = 2;
    static constexpr unsigned style = 4;  ///< --compact, --indent and --ascii
    static constexpr unsigned limit = 8;
    static constexpr unsigned force = 16;
    static constexpr unsigned shape = 32;
    static constexpr unsigned brief = 64;
};

struct Command {
    char const* name;
    int (*run)(Options const&);  ///< returns the exit code; throws `UsageError` or `Failure`
    char const* arguments;       ///< one in brackets may be missing, one with dots may come many times
    unsigned options;            ///< of `Takes`
    char const* summary;
    char const* details;
};

std::span<Command const> commands();

}  // namespace nxplist
