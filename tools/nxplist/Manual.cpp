// Prints help, manual page and completion.
#include "tools/nxplist/Manual.h"

#include <algorithm>
#include <string>

namespace nxplist {
namespace {

constexpr std::string_view summary = "work with property lists in JSON and packet files";

constexpr std::string_view description =
    "Property lists are trees of truth values, numbers, texts, arrays and dictionaries. FILE is read as JSON (comments "
    "allowed) or as packets, whichever its content shows, or as the elements of an array, one JSON text to a line, if "
    "its name ends in .jsonl; without a FILE, or with \"-\", standard input is read. Files "
    "are written whole or not at all. What a command drops (nulls, repeated keys, integers that a double cannot hold, "
    "what follows a NUL in packets) is told on standard error; with --strict it counts as invalid input.";

constexpr OptionText options[] = {
    {"--from", "FORM", "json lines packets", "convert check print stat get set delete same diff patch",
     "read FORM: json, lines or packets"},
    {"--to", "FORM", "json lines packets dump", "convert print",
     "write FORM: json, lines, packets, or dump for people"},
    {"--lines", "", "", "convert check print stat get set delete same diff patch",
     "read and write a JSON text on each line"},
    {"--raw", "", "", "get set", "print or take a text as it is, without quotes"},
    {"--compact", "", "", "convert print get set delete patch", "write JSON on one line"},
    {"--indent", "N", "", "convert print get set delete patch", "indent JSON by N spaces (4)"},
    {"--ascii", "", "", "convert print get set delete patch", "write other characters than ASCII as escapes"},
    {"--shape", "", "", "same", "compare kinds, sizes and keys only"},
    {"--brief", "", "", "diff", "print arrays and dictionaries by their size only"},
    {"--strict", "", "", "convert check print stat get set delete same diff patch", "count what is dropped as invalid"},
    {"--force", "", "", "convert set delete patch", "replace FILE even by less than it holds"},
    {"--limit", "MIB", "", "convert print get set delete same diff patch",
     "write shared items out to so many MiB of text (256)"},
    {"--help", "", "", "", "print this help"},
    {"--version", "", "", "", "print the version"},
};

constexpr struct {
    int code;
    std::string_view meaning;
} exitCodes[] = {{ExitCode::done, "done; the trees are the same"},
                 {ExitCode::negative, "invalid input, a value that is not there, or trees that differ"},
                 {ExitCode::unusable, "wrong usage, or a file that cannot be read or written"}};

void put(std::FILE* out, std::string_view text) { std::fwrite(text.data(), 1, text.size(), out); }

void putPadded(std::FILE* out, std::string const& label, std::string_view text) {
    std::fprintf(out, "  %-26s %.*s\n", label.c_str(), static_cast<int>(text.size()), text.data());
}

std::string joined(std::string_view first, std::string_view second) {
    return std::string(first) + (second.empty() ? "" : " ") + std::string(second);
}

/// Folds `text` into lines of at most 78 characters.
void putFolded(std::FILE* out, std::string_view text) {
    while (text.size() > 78) {
        std::size_t const at = text.rfind(' ', 78);
        put(out, text.substr(0, at));
        put(out, "\n");
        text.remove_prefix(at + 1);
    }
    put(out, text);
    put(out, "\n");
}

/// Prints text in a manual page with markup characters escaped.
void putRoff(std::FILE* out, std::string_view text) {
    for (char const c : text) {
        if (c == '\\') {
            put(out, "\\e");
        } else if (c == '-') {
            put(out, "\\-");
        } else {
            std::fputc(c, out);
        }
    }
}

void putRoffEntry(std::FILE* out, std::string const& label, std::string_view text, std::string_view more) {
    put(out, ".TP\n.B ");
    putRoff(out, label);
    put(out, "\n");
    putRoff(out, text);
    put(out, ".\n");
    if (more.empty()) return;
    put(out, "\\&");
    putRoff(out, more);
    put(out, "\n");
}

}  // namespace

OptionText const* findOption(std::string_view name) {
    auto const* const found = std::ranges::find(options, name, &OptionText::name);
    return found == std::end(options) ? nullptr : found;
}

bool takes(Command const& command, OptionText const& option) {
    std::string const list = " " + std::string(option.commands) + " ";
    return list.find(" " + std::string(command.name) + " ") != std::string::npos;
}

void printHelp(std::FILE* out) {
    put(out, "nxplist - ");
    put(out, summary);
    put(out, "\n\nusage: nxplist COMMAND [OPTION...] [FILE...]\n\n");
    putFolded(out, description);
    put(out, "\ncommands:\n");
    for (Command const& command : commands()) putPadded(out, joined(command.name, command.arguments), command.summary);
    put(out, "\noptions:\n");
    for (auto const& option : options) putPadded(out, joined(option.name, option.argument), option.summary);
    put(out, "\nexit codes:\n");
    for (auto const& exit : exitCodes) putPadded(out, std::to_string(exit.code), exit.meaning);
}

void printManPage(std::FILE* out) {
    put(out, ".TH NXPLIST 1 \"\" \"nxSupport " NX_VERSION "\" \"User Commands\"\n.SH NAME\nnxplist \\- ");
    putRoff(out, summary);
    put(out, "\n.SH SYNOPSIS\n.B nxplist\n.I COMMAND\n[\\fIOPTION\\fR...] [\\fIFILE\\fR...]\n.SH DESCRIPTION\n");
    putRoff(out, description);
    put(out, "\n.SH COMMANDS\n");
    for (Command const& command : commands()) {
        putRoffEntry(out, joined(command.name, command.arguments), command.summary, command.details);
    }
    put(out, ".SH OPTIONS\n");
    for (auto const& option : options) putRoffEntry(out, joined(option.name, option.argument), option.summary, "");
    put(out, ".SH EXIT STATUS\n");
    for (auto const& exit : exitCodes) putRoffEntry(out, std::to_string(exit.code), exit.meaning, "");
}

void printCompletion(std::FILE* out) {
    put(out,
        "_nxplist() {\n    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
        "    COMPREPLY=()\n    case $before in\n");
    for (auto const& option : options) {
        if (option.values.empty()) continue;
        std::fprintf(out, "    %s) COMPREPLY=($(compgen -W '%s' -- \"$word\")); return ;;\n",
                     std::string(option.name).c_str(), std::string(option.values).c_str());
    }
    put(out, "    esac\n    if [[ $COMP_CWORD -eq 1 ]]; then\n        COMPREPLY=($(compgen -W '");
    for (Command const& command : commands()) put(out, std::string(command.name) + " ");
    put(out,
        "--help --version' -- \"$word\"))\n        return\n    fi\n"
        "    if [[ $word != -* ]]; then\n"
        "        mapfile -t COMPREPLY < <(\"${COMP_WORDS[0]}\" --complete \"$word\" "
        "\"${COMP_WORDS[@]:1:COMP_CWORD-1}\" "
        "2>/dev/null)\n"
        "        [[ ${#COMPREPLY[@]} -eq 0 ]] || compopt -o nospace\n        return\n    fi\n"
        "    case ${COMP_WORDS[1]} in\n");
    for (Command const& command : commands()) {
        std::fprintf(out, "    %s) COMPREPLY=($(compgen -W '", std::string(command.name).c_str());
        for (auto const& option : options) {
            if (takes(command, option)) put(out, std::string(option.name) + " ");
        }
        put(out, "' -- \"$word\")) ;;\n");
    }
    put(out, "    esac\n}\ncomplete -o default -F _nxplist nxplist\n");
}

}  // namespace nxplist
