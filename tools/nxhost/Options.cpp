// Reads the command line and the environment.
#include "tools/nxhost/Options.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <string_view>

#include "foundation/urString/CString.h"
#include "support/services/env.h"

namespace nxhost {
namespace {

struct Option {
    std::string_view name;
    std::string_view argument;  ///< empty if it takes none
    std::string_view meaning;
    void (*set)(Options& options, std::string_view value);
};

/// Returns nothing if the text is not a number or the number is negative.
template <class Number>
std::optional<Number> parsed(std::string_view text) {
    Number value{};
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    bool const isWhole = error == std::errc() && end == text.data() + text.size();
    return isWhole && value >= 0 ? std::optional(value) : std::nullopt;
}

[[noreturn]] void refuse(std::string_view text, std::string_view what, char const* wanted) {
    throw UsageError{std::string(what) + " takes " + wanted + ", not \"" + std::string(text) + "\""};
}

std::uint64_t countIn(std::string_view text, std::string_view what) {
    if (auto const count = parsed<std::uint64_t>(text)) return *count;
    refuse(text, what, "a whole number");
}

double secondsIn(std::string_view text, std::string_view what) {
    if (auto const seconds = parsed<double>(text)) return *seconds;
    refuse(text, what, "a number of seconds, 0 for no limit");
}

/// A number of bytes, which K, M or G may follow.
std::uint64_t sizeIn(std::string_view text, std::string_view what) {
    constexpr std::string_view units = "KMG";
    std::size_t const unit = text.empty() ? units.npos : units.find(text.back());
    unsigned const shift = unit == units.npos ? 0 : 10 * (static_cast<unsigned>(unit) + 1);
    auto const count = parsed<std::uint64_t>(text.substr(0, text.size() - (shift > 0 ? 1 : 0)));
    if (!count) refuse(text, what, "bytes, such as 65536 or 64K");
    if (*count > UINT64_MAX >> shift) throw UsageError{std::string(what) + " takes less than " + std::string(text)};
    return *count << shift;
}

constexpr Option options[] = {
    {"-e", "CODE", "run CODE; several run in order",
     [](Options& o, std::string_view value) { o.code.emplace_back(value); }},
    {"-i", "", "show a prompt when the script has ended", [](Options& o, std::string_view) { o.prompt = true; }},
    {"--list", "", "list what scripts can use",
     [](Options& o, std::string_view) { o.listing = o.listing.value_or(nxRFL::ListingFormat::text); }},
    {"--json", "", "list it as JSON", [](Options& o, std::string_view) { o.listing = nxRFL::ListingFormat::json; }},
    {"--stubs", "", "list it as Lua declarations for editors",
     [](Options& o, std::string_view) { o.listing = nxRFL::ListingFormat::luaStubs; }},
    {"--sandbox", "", "no files, processes and loading for scripts",
     [](Options& o, std::string_view) {
         o.library = nxLC::Library::sandboxed;
         o.network.sandboxed = true;
     }},
    {"--instructions", "COUNT", "stop a script after COUNT instructions",
     [](Options& o, std::string_view value) { o.limits.instructions = countIn(value, "--instructions"); }},
    {"--memory", "SIZE", "refuse scripts more than SIZE bytes in total",
     [](Options& o, std::string_view value) { o.limits.totalMemory = sizeIn(value, "--memory"); }},
    {"--cache", "SIZE", "keep at most SIZE bytes of resources (256M; 0: all)",
     [](Options& o, std::string_view value) { o.cacheLimit = sizeIn(value, "--cache"); }},
    {"--time", "SECONDS", "let a transfer take at most SECONDS (3600; 0: for ever)",
     [](Options& o, std::string_view value) { o.network.timeLimit = secondsIn(value, "--time"); }},
    {"--stall", "SECONDS", "give up a transfer or a pipe after SECONDS without a byte (60; 0: never)",
     [](Options& o, std::string_view value) { o.network.stallLimit = secondsIn(value, "--stall"); }},
    {"--body", "SIZE", "refuse answers of more than SIZE bytes (1G; 0: none)",
     [](Options& o, std::string_view value) { o.network.bodyLimit = sizeIn(value, "--body"); }},
    {"--private", "", "let the sandbox reach loopback, link-local and private addresses",
     [](Options& o, std::string_view) { o.network.reachesPrivate = true; }},
    {"--allow", "SCHEME", "allow URLs of SCHEME beside http and https",
     [](Options& o, std::string_view value) { o.network.schemes.emplace_back(value); }},
    {"--authorities", "FILE", "trust the certificates in FILE instead of the system's",
     [](Options& o, std::string_view value) { o.network.authorities = value; }},
    {"--trace", "FILE", "write a time line for trace viewers to FILE",
     [](Options& o, std::string_view value) { o.traceFile = value; }},
    {"--stats", "", "print times and counters at the end", [](Options& o, std::string_view) { o.statistics = true; }},
    {"--help", "", "print this help", nullptr},
    {"--version", "", "print the version", nullptr},
};

constexpr struct {
    std::string_view name;
    std::string_view meaning;
} variables[] = {
    {"NX_DEBUG", "debug codes to switch on: names or numbers separated by \",\", \"*\", or off: \"-name\""},
    {"NX_LUA_PATH", "where `require` looks first: folders or Lua's patterns, separated by \";\""},
    {"NX_UNDO_LIMIT", "how many steps can be undone"},
    {"NX_UNDO_MEMORY_LIMIT", "how many bytes they may take: a number, or one with K, M or G"},
    {"NXHOST_HISTORY", "the file of the prompt's history (~/.nxhost_history); empty for none"},
};

constexpr struct {
    std::string_view code;
    std::string_view meaning;
} exitCodes[] = {
    {"0", "done"},
    {"1", "the script failed, or a function that it left behind did"},
    {"2", "wrong usage, or a file that cannot be read or written"},
    {"128 + N", "ended by the signal N: 130 by Ctrl-C, 143 by TERM"},
    {"other", "the script's choice: os.exit(code), host.exit(code)"},
};

void putLine(std::string const& label, std::string_view meaning) {
    std::printf("  %-22s %.*s\n", label.c_str(), static_cast<int>(meaning.size()), meaning.data());
}

void printHelp() {
    std::puts(
        "nxhost - run Lua scripts that use libSupport\n\n"
        "usage: nxhost [OPTION...] [SCRIPT [ARGUMENT...]]\n\n"
        "Runs SCRIPT (\"-\": the standard input), then what it has left running, such as transfers. Without\n"
        "a script: a prompt at a terminal, otherwise the standard input is the script.\n\noptions:");
    for (Option const& option : options) {
        std::string const separator = option.argument.empty() ? "" : " ";
        putLine(std::string(option.name) + separator + std::string(option.argument), option.meaning);
    }
    std::puts("\nenvironment:");
    for (auto const& variable : variables) putLine(std::string(variable.name), variable.meaning);
    std::puts("\nexit codes:");
    for (auto const& exit : exitCodes) putLine(std::string(exit.code), exit.meaning);
}

/// For bash: completes the names of options, and files for everything else.
void printCompletion() {
    std::printf(
        "_nxhost() {\n    COMPREPLY=()\n    [[ ${COMP_WORDS[COMP_CWORD]} == -* ]] || return\n"
        "    COMPREPLY=($(compgen -W '");
    for (Option const& option : options) std::printf("%.*s ", static_cast<int>(option.name.size()), option.name.data());
    std::printf("' -- \"${COMP_WORDS[COMP_CWORD]}\"))\n}\ncomplete -o default -F _nxhost nxhost\n");
}

/// libcurl accepts a list, and "all".
bool allowsFiles(std::string const& schemes) {
    urString::CString const list = (urString::CString(",").append(schemes) += ',').toLowerCase();
    return list.find(",file,") != list.npos || list.find(",all,") != list.npos;
}

/// Answers options about the program itself. False for any other word.
bool answered(std::string_view word) {
    if (word == "--help" || word == "-h") {
        printHelp();
    } else if (word == "--version") {
        std::puts("nxhost " NX_VERSION);
    } else if (word == "--completion") {
        printCompletion();
    } else {
        return false;
    }
    return true;
}

void readEnvironment(Options& result) {
    auto const variable = [](nxSupport::EnvVarCode code) {
        char const* const text = nxSupport::env(code);
        return std::string_view(text ? text : "");
    };
    result.debugCodes = variable(nxSupport::EnvVar_Debug);
    result.scriptPath = variable(nxSupport::EnvVar_LuaPath);
    if (auto const text = variable(nxSupport::EnvVar_UndoLimit); !text.empty())
        result.undoSteps = countIn(text, "NX_UNDO_LIMIT");
    if (auto const text = variable(nxSupport::EnvVar_UndoMemoryLimit); !text.empty())
        result.undoMemory = sizeIn(text, "NX_UNDO_MEMORY_LIMIT");
}

/// Reads the option in `words[i]` with its value, which may be the next word. Sets `i` to the last word used.
void readOption(Options& result, int argc, char const* const* words, int& i) {
    std::string_view const word = words[i];
    bool const hasValue = word.starts_with("--") && word.find('=') != word.npos;
    std::string_view const name = hasValue ? word.substr(0, word.find('=')) : word;
    auto const* const option = std::ranges::find(options, name, &Option::name);
    if (option == std::end(options) || !option->set) throw UsageError{"no option " + std::string(name)};
    if (option->argument.empty()) {
        if (hasValue) throw UsageError{std::string(name) + " takes no value"};
        option->set(result, {});
    } else if (hasValue) {
        option->set(result, word.substr(name.size() + 1));
    } else if (++i < argc) {
        option->set(result, words[i]);
    } else {
        throw UsageError{std::string(name) + " needs a " + std::string(option->argument)};
    }
}

}  // namespace

std::optional<Options> readOptions(int argc, char const* const* argv) {
    Options result;
    readEnvironment(result);
    int i = 1;
    for (; i < argc && argv[i][0] == '-' && argv[i][1] != '\0'; ++i) {
        if (std::string_view(argv[i]) == "--") {
            ++i;
            break;
        }
        if (answered(argv[i])) return std::nullopt;
        readOption(result, argc, argv, i);
    }
    if (result.network.sandboxed && std::ranges::any_of(result.network.schemes, &allowsFiles))
        throw UsageError{"--allow file is not for the sandbox"};
    // Otherwise the cache could use up the memory of scripts.
    if (result.limits.totalMemory != 0 && result.cacheLimit == Options().cacheLimit)
        result.cacheLimit = std::min<std::uint64_t>(result.cacheLimit, result.limits.totalMemory / 4);
    if (i < argc && result.code.empty()) result.script = argv[i++];
    result.arguments.assign(argv + i, argv + argc);
    bool const isAskedToRun = result.script || !result.code.empty() || result.prompt;
    if (result.listing && isAskedToRun) throw UsageError{"a listing takes neither a script nor -e or -i"};
    if (!isAskedToRun && !result.listing) {
        result.prompt = isatty(STDIN_FILENO) == 1;
        if (!result.prompt) result.script = "-";
    }
    return result;
}

}  // namespace nxhost
