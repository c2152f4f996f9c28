// Saves and opens documents.
#pragma once

#include <functional>

#include "foundation/urUtil/Error.h"
#include "support/documents/Document.h"

namespace nxSupport {

enum class FileForm {
    byName,   ///< JSON if the name ends in ".json", otherwise packets
    json,     ///< for people and version control; refuses nulls and numbers that are not finite
    packets,  ///< smaller and faster
};

/// Writes the document and marks it as unmodified. The file is replaced as a whole or not at all (see
/// `urOS::AtomicFile`) and is on the disk afterwards. An error names the file and, if a value has no form in JSON, the
/// object and the property. An error as well while a transaction is open, which may still take its changes back.
NX_API urUtil::Error save(Document& document, urString::IString const& path, FileForm form = FileForm::byName);

/// Called with the part of the work that is done, from 0 to 1, many times a second. False cancels. Must not change the
/// document.
using OpenProgress = std::function<bool(double)>;

/// Replaces the objects of the document by those of a file in either form; the history is empty then, and the objects
/// that were there refuse changes. The root must be of the class of the present root, or derived from it. What the
/// catalog does not know, classes and properties of other or newer programs, is kept and saved again.
///
/// JSON with values that no item holds (nulls, repeated keys, integers that are rounded) is refused, so that saving
/// again never loses them. After an error, also when cancelled, the document is what it was. The error names the file,
/// the line or the place in the tree, the object, the property and the mistake. An error as well while a transaction is
/// open.
NX_API urUtil::Error open(Document& document, urString::IString const& path, OpenProgress const& progress = {});

}  // namespace nxSupport
