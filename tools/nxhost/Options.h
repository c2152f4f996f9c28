// The options of the command line and the environment.
#pragma once

#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/nxLC/Limits.h"
#include "foundation/nxLC/State.h"
#include "foundation/nxRFL/listing.h"

namespace nxhost {

/// The program's exit codes. Scripts may choose any other with `os.exit`; a signal gives 128 plus its number.
struct ExitCode {
    static constexpr int done = 0;
    static constexpr int scriptFailed = 1;
    static constexpr int unusable = 2;
    static constexpr int brokenPipe = 128 + SIGPIPE;
};

/// Limits and permissions of transfers.
struct NetworkOptions {
    std::vector<std::string> schemes{"http", "https"};
    std::string authorities;               ///< a file of trusted certificates; empty for those of the system
    double timeLimit = 3600;               ///< for each transfer, in seconds; 0 for none
    double stallLimit = 60;                ///< seconds in which some byte must move, and a host answer; 0 for none
    std::uint64_t bodyLimit = 1ULL << 30;  ///< for an answer's body, in bytes; 0 for none
    bool sandboxed = false;                ///< no files, no proxies; scripts cannot raise the time limit
    bool reachesPrivate = false;           ///< private addresses, even in the sandbox
};

struct Options {
    std::optional<nxRFL::ListingFormat> listing;
    std::optional<std::string> script;   ///< a file, "-" for the standard input
    std::vector<std::string> code;       ///< run in order, in place of a script
    std::vector<std::string> arguments;  ///< for the script
    bool prompt = false;
    std::string document;  ///< a file to open before the script; empty for none

    nxLC::Library library = nxLC::Library::everything;
    nxLC::Limits limits;
    std::uint64_t cacheLimit = 256 << 20;  ///< in bytes; 0 for none
    NetworkOptions network;
    std::string traceFile;  ///< empty for none
    bool statistics = false;

    std::string debugCodes;      ///< NX_DEBUG
    std::string scriptPath;      ///< NX_LUA_PATH
    std::size_t undoSteps = 0;   ///< NX_UNDO_LIMIT; 0 for none
    std::size_t undoMemory = 0;  ///< NX_UNDO_MEMORY_LIMIT, bytes; 0 for none
};

/// Wrong usage. The text describes the mistake.
struct UsageError {
    std::string message;
};

/// Returns nothing after --help, --version or --completion has been answered. Throws `UsageError`.
std::optional<Options> readOptions(int argc, char const* const* argv);

}  // namespace nxhost
