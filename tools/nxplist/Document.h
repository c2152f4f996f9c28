// Reads files into trees and writes trees to files.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "foundation/urString/CString.h"
#include "plst/Item.h"
#include "tools/nxplist/Options.h"

namespace nxplist {

/// A file that cannot be read or written, or invalid input: one line for standard error, and the exit code. The line is
/// empty if reported losses have already given the reason.
struct Failure {
    int exitCode;
    std::string message;
};
void report(Failure const& failure);

/// What to do with losses on reading: ignore them, report them on standard error, or report them and reject the input.
enum class Losses { quiet, told, refused };

/// A tree and where it came from.
struct Document {
    std::string name;  ///< the name used in messages
    Form form = Form::json;
    ur::Reference<nxPLST::Item> root;  ///< may be null: for the JSON text `null` or an empty packet file
    std::uint64_t losses = 0;          ///< the number of losses on reading
    bool hasComments = false;          ///< whether reading also dropped comments
};

/// The name of an input in messages.
std::string inputName(std::string const& path);
/// The bytes of the file at `path`, or of standard input for "-". Throws `Failure`.
urString::CString contents(std::string const& path);

/// Reads a file. Throws `Failure`.
Document load(std::string const& path, std::optional<Form> form, Losses losses);

/// Writes the whole of `document` to the file at `path`, or to standard output for "-"; on failure the file stays
/// unchanged. Throws `Failure`, also if shared items would make the text longer than the style allows.
void store(Document const& document, std::string const& path, Form form, nxPLST::JsonStyle const& style);

/// The JSON of an item of a document, followed by a line feed, and without other line feeds if the document's form is
/// lines. Throws `Failure` if there is no JSON form, or if shared items would make it longer than the style allows.
urString::CString jsonText(ur::Reference<nxPLST::Item const> const& item, Document const& document,
                           Options const& options);

/// Throws `Failure` if the tree, of the document with that name, shares so much that its JSON would exceed the limit.
void requireWithin(nxPLST::Item const* root, std::string const& name, std::uint64_t limit);

/// `text`, such as a file name, without control characters, to be part of one line.
std::string printable(std::string_view text);

/// Writes text to standard output. Throws `Failure`.
void printText(urString::CString const& text);

}  // namespace nxplist
