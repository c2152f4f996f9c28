// Files as trees, and trees as files.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/urString/CString.h"
#include "plst/Item.h"
#include "tools/nxplist/Options.h"

namespace nxplist {

/// A file that cannot be read or written, or input that is invalid: told in one line, with its exit code.
struct Failure {
    int exitCode;
    std::string message;
};

enum class Losses { quiet, told };

/// A tree and where it came from.
struct Document {
    std::string name;  ///< as messages call it
    Form form = Form::json;
    ur::Reference<nxPLST::Item> root;  ///< may be null: a JSON text of just `null`, an empty packet file
    std::uint64_t losses = 0;          ///< how many things reading dropped
};

/// Reads the file at `path`, or standard input for "-". Throws `Failure`. With `Losses::told`, what reading drops is
/// told on standard error.
Document load(std::string const& path, std::optional<Form> form, Losses losses = Losses::quiet);

/// Writes `document` to the file at `path` as a whole or not at all, or to standard output for "-". Throws `Failure`.
void store(Document const& document, std::string const& path, Form form);

/// The strict JSON of an item out of the document of that name. Throws `Failure` when there is none.
urString::CString strictJson(ur::Reference<nxPLST::Item const> const& item, std::string const& name);

/// `text`, such as the name of a file, as part of one line: without control characters.
std::string printable(std::string_view text);

/// Writes text to standard output. Throws `Failure`.
void printText(urString::CString const& text);

}  // namespace nxplist
