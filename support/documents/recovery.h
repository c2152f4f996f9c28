// Finds and opens what a crash left.
#pragma once

#include <chrono>

#include "foundation/urUtil/Error.h"
#include "support/documents/Document.h"

namespace nxSupport {

/// A file of `Autosave` that no program uses any more.
struct Recoverable {
    urString::IString path;
    urString::CString name;                      ///< as given to `Autosave::setName`
    std::chrono::system_clock::time_point time;  ///< of the last `Autosave::write` that is complete
};

/// The files in `folder` that a crash left, the latest first. Files that are in use or hold no
/// document are left out. Also removes temporary files that a crash during the writing of a whole document left.
[[nodiscard]] NX_API ur::vector<Recoverable> recoverable(urString::IString const& folder);

/// Replaces the objects of the document by those of the last complete `Autosave::write`, as `open` does; the document
/// is modified then. The file stays: remove it when the document has been saved. After an error the document is what it
/// was.
NX_API urUtil::Error recover(Document& document, urString::IString const& path);

}  // namespace nxSupport
