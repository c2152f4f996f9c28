// Reads the command line and the environment.
#include "tools/nxhost/Options.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <functional>
#include <span>
#include <string_view>

#include "foundation/urString/CString.h"
#include "support/services/env.h"

namespace nxhost {
namespace {

constexpr char const* description = R"(nxhost - run Lua scripts that use libSupport

Runs SCRIPT, then what it has left running, such as transfers. Without a script: a prompt at a
terminal, otherwise the standard input is the script.
)";
constexpr char const* environmentAndExitCodes = R"(Environment:
  NX_DEBUG                    debug codes to switch on: names or numbers separated by ",", "*", or off: "-name"
  NX_LUA_PATH                 where `require` looks first: folders or Lua's patterns, separated by ";"
  NX_UNDO_LIMIT               how many steps can be undone
  NX_UNDO_MEMORY_LIMIT        how many bytes they may take: a number, or one with K, M or G
  NXHOST_HISTORY              the file of the prompt's history (~/.nxhost_history); empty for none

Exit codes:
  0                           done
  1                           the script failed, or a function that it left behind did
  2                           wrong usage, or a file that cannot be read or written
  128 + N                     ended by the signal N: 130 by Ctrl-C, 143 by TERM
  other                       the script's choice: os.exit(code), host.exit(code))";

/// Returns nothing if the text is not a number or the number is negative. CLI11 would read octal numbers, follow the
/// locale and let numbers overflow.
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

/// `set` receives each value, in the order of the command line.
CLI::Option* addOption(CLI::App& app, char const* name, char const* argument, char const* meaning,
                       std::function<void(std::string const&)> const& set) {
    auto const setWord = [set](std::string const& word) { set(word.c_str()); };  // without the NUL of `wordsIn`
    return app.add_option_function<std::string>(name, setWord, meaning)->type_name(argument)->trigger_on_parse();
}

/// `read` makes a number out of a text and the option's name. `standard` is the default for the help; empty for none.
template <class Number, class Read>
void addLimit(CLI::App& app, char const* name, char const* argument, Number& limit, Read read, char const* standard,
              char const* meaning) {
    addOption(app, name, argument, meaning, [=, &limit](std::string const& text) {
        limit = read(text, name);
    })->default_str(standard);
}

void addScripts(CLI::App& app, Options& o) {
    app.option_defaults()->group("Scripts");
    addOption(app, "-e", "CODE", "run CODE in place of SCRIPT; several run in order",
              [&o](std::string const& code) { o.code.push_back(code); });
    addOption(app, "--open", "FILE", "open FILE as the document before the script runs",
              [&o](std::string const& file) { o.document = file; });
    app.add_flag("-i", o.prompt, "show a prompt when the script has ended");
    auto const addListing = [&](char const* name, nxRFL::ListingFormat format, char const* meaning) {
        app.add_flag_callback(
            name, [&o, format] { o.listing = format; }, meaning);
    };
    addListing("--list", nxRFL::ListingFormat::text, "list what scripts can use");
    addListing("--json", nxRFL::ListingFormat::json, "list it as JSON");
    addListing("--stubs", nxRFL::ListingFormat::luaStubs, "list it as Lua declarations for editors");
}

void addLimits(CLI::App& app, Options& o) {
    app.option_defaults()->group("Limits");
    app.add_flag("--sandbox", o.network.sandboxed, "no files, processes and loading for scripts");
    addLimit(app, "--instructions", "COUNT", o.limits.instructions, countIn, "",
             "stop a script after COUNT instructions");
    addLimit(app, "--memory", "SIZE", o.limits.totalMemory, sizeIn, "", "refuse scripts more than SIZE bytes in total");
    addLimit(app, "--cache", "SIZE", o.cacheLimit, sizeIn, "256M", "keep at most SIZE bytes of resources; 0: all");
}

void addTransfers(CLI::App& app, NetworkOptions& o) {
    app.option_defaults()->group("Transfers");
    addLimit(app, "--time", "SECONDS", o.timeLimit, secondsIn, "3600",
             "let a transfer take at most SECONDS; 0: for ever");
    addLimit(app, "--stall", "SECONDS", o.stallLimit, secondsIn, "60",
             "give up a transfer or a pipe after SECONDS without a byte; 0: never");
    addLimit(app, "--body", "SIZE", o.bodyLimit, sizeIn, "1G", "refuse answers of more than SIZE bytes; 0: none");
    app.add_flag("--private", o.reachesPrivate, "let the sandbox reach loopback, link-local and private addresses");
    addOption(app, "--allow", "SCHEME", "allow URLs of SCHEME beside http and https",
              [&o](std::string const& scheme) { o.schemes.push_back(scheme); });
    addOption(app, "--authorities", "FILE", "trust the certificates in FILE instead of the system's",
              [&o](std::string const& file) { o.authorities = file; });
}

void addDiagnostics(CLI::App& app, Options& o) {
    app.option_defaults()->group("Diagnostics");
    addOption(app, "--trace", "FILE", "write a time line for trace viewers to FILE",
              [&o](std::string const& file) { o.traceFile = file; });
    app.add_flag("--stats", o.statistics, "print times and counters at the end");
}

/// For bash: completes the names of options, and files for everything else.
void printCompletion(CLI::App const& app) {
    std::string names;
    for (CLI::Option const* option : app.get_options()) {
        if (option->nonpositional()) names += option->get_name() + " ";
    }
    std::printf(
        "_nxhost() {\n    COMPREPLY=()\n    [[ ${COMP_WORDS[COMP_CWORD]} == -* ]] || return\n"
        "    COMPREPLY=($(compgen -W '%s' -- \"${COMP_WORDS[COMP_CWORD]}\"))\n}\n"
        "complete -o default -F _nxhost nxhost\n",
        names.c_str());
}

void addAnswers(CLI::App& app) {
    app.option_defaults()->group("About the program");
    app.set_help_flag("-h,--help", "print this help");
    app.set_version_flag("--version", "nxhost " NX_VERSION, "print the version");
    app.add_flag("--completion")->description("print the completion for bash");
}

/// What follows the first of these words belongs to the script, whatever it looks like.
void addWords(CLI::App& app, std::vector<std::string>& words) {
    auto const add = [&words](CLI::results_t const& found) {
        for (std::string const& word : found) words.emplace_back(word.c_str());
        return true;
    };
    app.add_option("SCRIPT", add, "a file; \"-\" for the standard input");
    // Not bound to a vector, because CLI11 would then take "[1,2]" for two words.
    constexpr int most = CLI::detail::expected_max_vector_size;
    app.add_option("ARGUMENT", add, "what the script gets")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->expected(most, most);
    app.positionals_at_end();
}

/// libcurl accepts a list, and "all".
bool allowsFiles(std::string const& schemes) {
    urString::CString const list = (urString::CString(",").append(schemes) += ',').toLowerCase();
    return list.find(",file,") != list.npos || list.find(",all,") != list.npos;
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

/// The words in the order that CLI11 wants. After "--name=" it would take the next word as the value. A NUL, which no
/// word of a command line contains, stands for the empty value until it is set.
std::vector<std::string> wordsIn(std::span<char const* const> line) {
    std::vector<std::string> words(line.rbegin(), line.rend());
    for (std::string& word : words) {
        if (word.starts_with("--") && word.ends_with('=')) word.push_back('\0');
    }
    return words;
}

/// CLI11 leaves out the dashes of a flag that is given a value.
std::string messageOf(CLI::ParseError const& mistake) {
    std::string text = mistake.what();
    if (!text.ends_with("was given a disallowed flag override")) return text;
    return "--" + text.substr(0, text.find(' ')) + " takes no value";
}

/// Checks and completes what the single options say.
void combine(Options& o, bool choosesCache) {
    if (o.network.sandboxed) o.library = nxLC::Library::sandboxed;
    if (o.network.sandboxed && std::ranges::any_of(o.network.schemes, &allowsFiles))
        throw UsageError{"--allow file is not for the sandbox"};
    // Otherwise the cache could use up the memory of scripts.
    if (o.limits.totalMemory != 0 && !choosesCache)
        o.cacheLimit = std::min<std::uint64_t>(o.cacheLimit, o.limits.totalMemory / 4);
    if (o.code.empty() && !o.arguments.empty()) {
        o.script = o.arguments.front();
        o.arguments.erase(o.arguments.begin());
    }
    bool const isAskedToRun = o.script || !o.code.empty() || o.prompt;
    if (o.listing && isAskedToRun) throw UsageError{"a listing takes neither a script nor -e or -i"};
    if (!isAskedToRun && !o.listing) {
        o.prompt = isatty(STDIN_FILENO) == 1;
        if (!o.prompt) o.script = "-";
    }
}

}  // namespace

std::optional<Options> readOptions(int argc, char const* const* argv) {
    Options result;
    readEnvironment(result);
    CLI::App app(description, "nxhost");
    app.footer(environmentAndExitCodes);
    app.option_defaults()->disable_flag_override();  // what follows --sandbox must not take it back
    addScripts(app, result);
    addLimits(app, result);
    addTransfers(app, result.network);
    addDiagnostics(app, result);
    addAnswers(app);
    addWords(app, result.arguments);
    try {
        app.parse(wordsIn({argv + 1, argv + argc}));
    } catch (CLI::CallForHelp const&) {
        // CLI11 puts two blank lines between groups.
        std::fputs(CLI::detail::find_and_replace(app.help(), "\n\n\n", "\n\n").c_str(), stdout);
        return std::nullopt;
    } catch (CLI::Success const& answer) {
        app.exit(answer);
        return std::nullopt;
    } catch (CLI::ParseError const& mistake) {
        throw UsageError{messageOf(mistake)};
    }
    if (app.count("--completion") > 0) {
        printCompletion(app);
        return std::nullopt;
    }
    combine(result, app.count("--cache") > 0);
    return result;
}

}  // namespace nxhost
