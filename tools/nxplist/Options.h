// The options of the command line.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "plst/json.h"
#include "tools/nxplist/commands.h"

namespace nxplist {

/// The forms in which trees are written.
enum class Form { json, lines, packets, dump };

struct Options {
    Command const* command = nullptr;
    std::vector<std::string> files;
    std::optional<Form> from;
    std::optional<Form> to;
    bool raw = false;
    bool shape = false;
    bool strict = false;
    bool force = false;
    bool lines = false;
    bool brief = false;
    nxPLST::JsonStyle style{.indent = 4};

    /// How files are to be read; empty for what their content and name say.
    [[nodiscard]] std::optional<Form> inputForm() const { return lines && !from ? Form::lines : from; }
};

/// Wrong usage. The text describes the mistake.
struct UsageError {
    std::string message;
};

/// Throws `UsageError`. The command is null after --help, --version, --man-page, --completion or --complete has been
/// answered on standard output.
Options readOptions(int argc, char const* const* argv);
/// The options and the file, if these are the words of `command` that come before its PATH; otherwise there is no file.
Options readBeforePath(std::string const& command, std::span<char const* const> words);

}  // namespace nxplist
