// Files as trees, and trees as files.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/urString/CString.h"
#include "plst/Item.h"
#include "tools/nxplist/Options.h"

namespace nxplist {

/// A file that cannot be read or written, or input that is invalid: one line for standard error, and the exit code. The
/// line is empty when reported losses have already given the reason.
struct Failure {
    int exitCode;
    std::string message;
};
void report(Failure const& failure);

/// What becomes of the losses of reading: they are told on standard error, and may make the input invalid.
enum class Losses { quiet, told, refused };

/// A tree and where it came from.
struct Document {
    std::string name;  ///< as messages call it
    Form form = Form::json;
    ur::Reference<nxPLST::Item> root;  ///< may be null: a JSON text of just `null`, an empty packet file
    std::uint64_t losses = 0;          ///< how many things reading dropped
    bool hasComments = false;          ///< reading dropped those as well
};

/// How messages call an input.
std::string inputName(std::string const& path);
/// The bytes of the file at `path`, or of standard input for "-". Throws `Failure`.
urString::CString contents(std::string const& path);

/// Reads a file. Throws `Failure`.
Document load(std::string const& path, std::optional<Form> form, Losses losses);

/// Writes `document` to the file at `path` as a whole or not at all, or to standard output for "-". Throws `Failure`,
/// also when a text would be longer than the style allows because of what the tree shares.
void store(Document const& document, std::string const& path, Form form, nxPLST::JsonStyle const& style);

/// The JSON of an item out of a document, with a line feed behind it, and without others when the document is one of
/// lines. Throws `Failure` when there is none, or when it would be longer than the style allows because of what the
/// item shares.
urString::CString jsonText(ur::Reference<nxPLST::Item const> const& item, Document const& document,
                           Options const& options);

/// Throws `Failure` when a tree out of the document of that name shares so much that its JSON would exceed the limit.
void requireWithin(nxPLST::Item const* root, std::string const& name, std::uint64_t limit);

/// `text`, such as the name of a file, as part of one line: without control characters.
std::string printable(std::string_view text);

/// Writes text to standard output. Throws `Failure`.
void printText(urString::CString const& text);

}  // namespace nxplist
