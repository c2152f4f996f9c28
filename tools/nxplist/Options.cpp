// Reads the command line.
#include "tools/nxplist/Options.h"

#include <charconv>
#include <climits>
#include <cstdio>
#include <string_view>

#include "tools/nxplist/Manual.h"
#include "tools/nxplist/PathCompletion.h"

namespace nxplist {
namespace {

Form formNamed(std::string_view name, OptionText const& option) {
    std::string const offered = " " + std::string(option.values) + " ";
    if (offered.find(" " + std::string(name) + " ") == std::string::npos) {
        throw UsageError{std::string(option.name) + " takes one of: " + std::string(option.values)};
    }
    return name == "json" ? Form::json : name == "lines" ? Form::lines : name == "packets" ? Form::packets : Form::dump;
}

std::uint64_t numberFrom(std::string_view text, OptionText const& option, std::uint64_t most, char const* what) {
    std::uint64_t number = 0;
    auto const [end, problem] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size() || problem != std::errc() || number > most)
        throw UsageError{std::string(option.name) + " takes " + what};
    return number;
}

std::uint64_t bytesFrom(std::string_view mebibytes, OptionText const& option) {
    constexpr unsigned bits = 20;
    return numberFrom(mebibytes, option, UINT64_MAX >> bits, "a number of MiB") << bits;
}

unsigned indentFrom(std::string_view spaces, OptionText const& option) {
    return static_cast<unsigned>(numberFrom(spaces, option, UINT_MAX, "a number of spaces"));
}

/// Answers options about the program itself. False for any other word.
bool answered(std::string_view word) {
    if (word == "--help" || word == "-h") {
        printHelp(stdout);
    } else if (word == "--version") {
        std::puts("nxplist " NX_VERSION);
    } else if (word == "--man-page") {
        printManPage(stdout);
    } else if (word == "--completion") {
        printCompletion(stdout);
    } else {
        return false;
    }
    return true;
}

void set(Options& chosen, OptionText const& option, std::string_view value) {
    if (option.name == "--from") chosen.from = formNamed(value, option);
    if (option.name == "--to") chosen.to = formNamed(value, option);
    if (option.name == "--raw") chosen.raw = true;
    if (option.name == "--shape") chosen.shape = true;
    if (option.name == "--strict") chosen.strict = true;
    if (option.name == "--force") chosen.force = true;
    if (option.name == "--lines") chosen.lines = true;
    if (option.name == "--brief") chosen.brief = true;
    if (option.name == "--compact") chosen.style.indent = 0;
    if (option.name == "--ascii") chosen.style.asciiOnly = true;
    if (option.name == "--indent") chosen.style.indent = indentFrom(value, option);
    if (option.name == "--limit") chosen.style.mostExpandedBytes = bytesFrom(value, option);
}

void checkFileCount(Command const& command, std::size_t count) {
    if (count >= command.least && count <= command.most) return;
    throw UsageError{std::string(command.name) + " takes " + std::string(command.arguments) + ", not " +
                     std::to_string(count) + (count == 1 ? " argument" : " arguments")};
}

}  // namespace

Options readOptions(int argc, char const* const* argv) {
    if (argc < 2) throw UsageError{"a command is missing"};
    if (answered(argv[1])) return {};
    std::span<char const* const> const words(argv + 2, argv + argc);
    if (std::string_view(argv[1]) == "--complete" && words.size() >= 2) {
        printPathCompletions(words[0], words[1], words.subspan(2));
        return {};
    }
    Command const* const command = findCommand(argv[1]);
    if (!command) throw UsageError{"no command " + std::string(argv[1])};
    Options options = readWords(*command, words, &answered);
    if (options.command) checkFileCount(*command, options.files.size());
    return options;
}

Options readWords(Command const& command, std::span<char const* const> words, bool (*answers)(std::string_view word)) {
    Options options;
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::string_view const word = words[i];
        if (optionsEnded || word.size() < 2 || word[0] != '-') {
            options.files.emplace_back(word);
            continue;
        }
        if (answers(word)) return options;
        optionsEnded = word == "--";
        if (optionsEnded) continue;
        std::string_view const name = word.substr(0, word.find('='));
        OptionText const* const option = findOption(name);
        if (!option || !takes(command, *option)) {
            throw UsageError{std::string(command.name) + " has no option " + std::string(name)};
        }
        std::string_view value = name.size() < word.size() ? word.substr(name.size() + 1) : std::string_view();
        if (option->argument.empty() && name.size() < word.size())
            throw UsageError{std::string(name) + " takes no value"};
        if (!option->argument.empty() && name.size() == word.size()) {
            if (++i == words.size()) throw UsageError{std::string(name) + " needs a " + std::string(option->argument)};
            value = words[i];
        }
        set(options, *option, value);
    }
    options.command = &command;
    return options;
}

}  // namespace nxplist
