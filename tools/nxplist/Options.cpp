// Registers commands and options with CLI11, and makes help, manual page and completion from what is registered.
#include "tools/nxplist/Options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string_view>

#include "tools/nxplist/PathCompletion.h"

namespace nxplist {
namespace {

constexpr char const* summary = "work with property lists in JSON and packet files";

constexpr char const* about =
    R"(Property lists are trees of truth values, numbers, texts, arrays and dictionaries. FILE
is read as JSON (comments allowed) or as packets, whichever its content shows, or as the
elements of an array, one JSON text to a line, if its name ends in .jsonl; without a
FILE, or with "-", standard input is read. Files are written whole or not at all. What a
command drops (nulls, repeated keys, integers that a double cannot hold, what follows a
NUL in packets) is told on standard error; with --strict it counts as invalid input.)";

constexpr char const* exitCodes = R"(  0                           done; the trees are the same
  1                           invalid input, a value that is not there, or trees that differ
  2                           wrong usage, or a file that cannot be read or written
)";

/// `forms` are in the order of `Form`.
void addForm(CLI::App& command, char const* name, std::vector<std::string> const& forms, std::optional<Form>& form,
             char const* meaning) {
    auto const set = [&form, forms](std::string const& chosen) {
        form = static_cast<Form>(std::ranges::find(forms, chosen) - forms.begin());
    };
    command.add_option_function<std::string>(name, set, meaning)->check(CLI::IsMember(forms))->type_name("FORM");
}

/// CLI11 would read digits after a zero as octal.
CLI::Validator decimal() {
    auto const dropZeros = [](std::string& digits) {
        digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size() - 1));
        return std::string();
    };
    return CLI::Validator(dropZeros, "");
}

/// --compact and --indent are set while the words are read, so that the last one holds.
void addStyle(CLI::App& command, nxPLST::JsonStyle& style) {
    auto const compact = [&style] { style.indent = 0; };
    command.add_flag_callback("--compact", compact, "write JSON on one line")->trigger_on_parse();
    command.add_option("--indent", style.indent, "indent JSON by N spaces")
        ->transform(decimal())
        ->check(CLI::Range(UINT_MAX).description(""))
        ->type_name("N")
        ->capture_default_str()
        ->trigger_on_parse();
    command.add_flag("--ascii", style.asciiOnly, "write other characters than ASCII as escapes");
}

void addLimit(CLI::App& command, std::uint64_t& bytes) {
    constexpr unsigned mebibyte = 20;  // bits
    auto const set = [&bytes](std::uint64_t size) { bytes = size << mebibyte; };
    command.add_option_function<std::uint64_t>("--limit", set, "write shared items out to so many MiB of text")
        ->transform(decimal())
        ->check(CLI::Range(UINT64_MAX >> mebibyte).description(""))
        ->type_name("MIB")
        ->default_str(std::to_string(bytes >> mebibyte));
}

void addOptions(CLI::App& command, unsigned takes, Options& o) {
    addForm(command, "--from", {"json", "lines", "packets"}, o.from, "read FORM");
    if ((takes & Takes::to) != 0)
        addForm(command, "--to", {"json", "lines", "packets", "dump"}, o.to, "write FORM; a dump is for people");
    auto const addFlag = [&](unsigned wanted, char const* name, bool& flag, char const* meaning) {
        if ((takes & wanted) == wanted) command.add_flag(name, flag, meaning);
    };
    addFlag(0, "--lines", o.lines, "read and write a JSON text on each line");
    addFlag(Takes::raw, "--raw", o.raw, "print or take a text as it is, without quotes");
    if ((takes & Takes::style) != 0) addStyle(command, o.style);
    addFlag(Takes::shape, "--shape", o.shape, "compare kinds, sizes and keys only");
    addFlag(Takes::brief, "--brief", o.brief, "print arrays and dictionaries by their size only");
    addFlag(0, "--strict", o.strict, "count what is dropped as invalid");
    addFlag(Takes::force, "--force", o.force, "replace FILE even by less than it holds");
    if ((takes & Takes::limit) != 0) addLimit(command, o.style.mostExpandedBytes);
}

/// Not bound to a vector, because CLI11 would then take "[1]" for "1".
void addArguments(CLI::App& command, char const* arguments, std::vector<std::string>& files) {
    auto const add = [&files](CLI::results_t const& words) {
        files.insert(files.end(), words.begin(), words.end());
        return true;
    };
    std::istringstream words(arguments);
    for (std::string word; words >> word;) {
        bool const isRequired = word.front() != '[';
        int const most = word.find("...") == word.npos ? 1 : CLI::detail::expected_max_vector_size;
        std::erase_if(word, [](char c) { return c == '[' || c == '.' || c == ']'; });
        command.add_option(word, add)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
            ->expected(most, most)
            ->required(isRequired);
    }
}

std::vector<CLI::Option const*> optionsOf(CLI::App const& app) {
    return app.get_options([](CLI::Option const* option) { return option->nonpositional(); });
}

/// Each option of any command once.
std::vector<CLI::Option const*> optionsOfCommands(CLI::App const& app) {
    std::vector<CLI::Option const*> result;
    for (CLI::App const* command : app.get_subcommands({})) {
        for (CLI::Option const* option : optionsOf(*command)) {
            bool const isNew = std::ranges::none_of(result, [&](auto const* other) { return *other == *option; });
            if (isNew && option != command->get_help_ptr()) result.push_back(option);
        }
    }
    return result;
}

/// Shows the arguments of commands beside their names, and their options below.
class Help : public CLI::Formatter {
public:
    [[nodiscard]] std::string labelOf(CLI::App const* command) const {
        std::string label = command->get_name();
        for (CLI::Option const* option : command->get_options()) {
            if (option->get_positional()) label += " " + make_option_usage(option);
        }
        return label;
    }
    std::string make_usage(CLI::App const* app, std::string) const override {
        if (app->get_subcommands({}).empty()) return "\n" + Formatter::make_usage(app, "nxplist " + app->get_name());
        return "\nUsage: nxplist COMMAND [OPTIONS] [FILE...]\n";
    }
    std::string make_positionals(CLI::App const*) const override { return {}; }
    std::string make_subcommand(CLI::App const* command) const override {
        std::ostringstream out;
        CLI::detail::format_help(out, labelOf(command), command->get_description(), column_width_);
        return out.str();
    }
    std::string make_subcommands(CLI::App const* app, CLI::AppFormatMode mode) const override {
        auto const options = optionsOfCommands(*app);
        std::string const commands = Formatter::make_subcommands(app, mode);
        return options.empty() ? commands : commands + make_group("Options of commands", false, options);
    }
};

/// Text in man(7) markup.
std::string roff(std::string_view text) {
    std::string result;
    for (char const c : text) {
        if ((c == '.' || c == '\'') && (result.empty() || result.back() == '\n')) result += "\\&";
        result += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
    }
    return result;
}

std::string roffEntry(std::string const& label, std::string const& meaning) {
    return ".TP\n.B " + roff(label) + "\n" + roff(meaning) + ".\n";
}

void printManPage(CLI::App const& app) {
    Help const help;
    std::string page = ".TH NXPLIST 1 \"\" \"nxSupport " NX_VERSION "\" \"User Commands\"\n.SH NAME\nnxplist \\- ";
    page += roff(summary) + "\n.SH SYNOPSIS\n.B nxplist\n.I COMMAND\n[\\fIOPTION\\fR...] [\\fIFILE\\fR...]\n";
    page += ".SH DESCRIPTION\n" + roff(about) + "\n.SH COMMANDS\n";
    for (CLI::App const* command : app.get_subcommands({}))
        page += roffEntry(help.labelOf(command), command->get_description()) + roff(command->get_footer()) + "\n";
    page += ".SH OPTIONS\n";
    for (auto const& options : {optionsOfCommands(app), optionsOf(app)}) {
        for (CLI::Option const* option : options) {
            std::string const label = help.make_option_name(option, false) + help.make_option_opts(option);
            page += roffEntry(label, option->get_description());
        }
    }
    page += ".SH EXIT STATUS\n.nf\n" + roff(exitCodes) + ".fi\n";
    std::fputs(page.c_str(), stdout);
}

std::string namesOf(auto const& commandsOrOptions) {
    return CLI::detail::join(
        commandsOrOptions, [](auto const* each) { return each->get_name(); }, " ");
}

/// For bash: completes commands, the options of each, what they take, paths, and files for everything else.
void printCompletion(CLI::App const& app) {
    auto const offer = [](std::string const& words) {
        return "COMPREPLY=($(compgen -W '" + words + "' -- \"$word\"))";
    };
    auto const commands = app.get_subcommands({});
    std::string script = R"(_nxplist() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}
    COMPREPLY=()
    case $before in
)";
    for (CLI::Option const* option : optionsOfCommands(app)) {
        std::string const type = option->get_type_name();  // FORM:{json,lines}, of which bash makes the words
        if (std::size_t const values = type.find('{'); values != type.npos)
            script += "    " + option->get_name() + ") " + offer(type.substr(values)) + "; return ;;\n";
    }
    script += "    esac\n    if [[ $COMP_CWORD -eq 1 ]]; then\n        ";
    script += offer(namesOf(commands) + " " + namesOf(optionsOf(app)));
    script += R"(
        return
    fi
    if [[ $word != -* ]]; then
        mapfile -t COMPREPLY < <("${COMP_WORDS[0]}" --complete "$word" "${COMP_WORDS[@]:1:COMP_CWORD-1}" 2>/dev/null)
        [[ ${#COMPREPLY[@]} -eq 0 ]] || compopt -o nospace
        return
    fi
    case ${COMP_WORDS[1]} in
)";
    for (CLI::App const* command : commands)
        script += "    " + command->get_name() + ") " + offer(namesOf(optionsOf(*command))) + " ;;\n";
    std::fputs((script + "    esac\n}\ncomplete -o default -F _nxplist nxplist\n").c_str(), stdout);
}

/// Parsing the words of one of the commands sets `o`.
void addAll(CLI::App& app, Options& o) {
    app.formatter(std::make_shared<Help>());
    app.set_help_flag("-h,--help", "print this help");
    app.option_defaults()->disable_flag_override()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    for (Command const& command : commands()) {
        CLI::App& added =
            *app.add_subcommand(command.name, command.summary)->group("Commands")->footer(command.details);
        added.final_callback([&o, &command] { o.command = &command; });
        addOptions(added, command.options, o);
        addArguments(added, command.arguments, o.files);
    }
    app.set_version_flag("--version", "nxplist " NX_VERSION, "print the version");
    app.add_flag("--man-page")->description("print the manual page");
    app.add_flag("--completion")->description("print the completion for bash");
    app.footer(std::string("Exit codes:\n") + exitCodes);
}

/// CLI11 wants the words in reverse.
void parse(CLI::App& app, std::span<char const* const> words) {
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
}

}  // namespace

Options readOptions(int argc, char const* const* argv) {
    std::span<char const* const> const words(argv + 1, argv + argc);
    std::string const first = words.empty() ? "-" : words[0];
    if (first == "--complete" && words.size() >= 3) {
        printPathCompletions(words[1], words[2], words.subspan(3));
        return {};
    }
    Options options;
    CLI::App program(std::string("nxplist - ") + summary + "\n\n" + about, "nxplist");
    addAll(program, options);
    // A command is parsed by itself, because within the program the word "++" would end it.
    bool const isCommand = !first.starts_with('-');
    CLI::App* asked = &program;
    try {
        if (isCommand) asked = program.get_subcommand(first);
        parse(*asked, words.subspan(isCommand ? 1 : 0));
    } catch (CLI::Success const& answer) {
        asked->exit(answer);
        return {};
    } catch (CLI::OptionNotFound const&) {
        throw UsageError{"no command " + first};
    } catch (CLI::ParseError const& mistake) {
        throw UsageError{mistake.what()};
    }
    if (program.count("--man-page") > 0) {
        printManPage(program);
    } else if (program.count("--completion") > 0) {
        printCompletion(program);
    } else if (!options.command) {
        throw UsageError{"a command is missing"};
    }
    return options;
}

Options readBeforePath(std::string const& command, std::span<char const* const> words) {
    Options options;
    CLI::App program;
    addAll(program, options);
    try {
        parse(*program.get_subcommand(command), words);
    } catch (CLI::RequiredError const& missing) {
        if (std::string_view(missing.what()).starts_with("PATH ")) return options;
    } catch (CLI::Error const&) {
    }
    return {};
}

}  // namespace nxplist
