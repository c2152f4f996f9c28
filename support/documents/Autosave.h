// Keeps what a user would lose in a crash.
#pragma once

#include <memory>

#include "foundation/urUtil/Error.h"
#include "support/documents/Document.h"

namespace nxSupport {

/// Writes a document to a file beside it whenever the host calls `write`: the first time as a whole, then what has
/// changed since. `recoverable` finds the files that a crash left.
///
/// Time and bytes of a call follow the change. Once the changes take more bytes than the whole document, and at least
/// 64 KiB, the next call writes it anew: on average this doubles the bytes. The file exists from the first `write` of a
/// modified document on until `discard`: call that when the user saves, or closes without saving. It is locked as long
/// as this object lives. A document has one at a time: the next one ends it. Main thread only.
class NX_API Autosave {
public:
    static constexpr std::size_t usualLeastBytes = std::size_t(64) << 10;

    /// Writes into `folder`, which must exist. `leastBytes` are those after which the file may be written anew.
    Autosave(Document& document, urString::IString const& folder, std::size_t leastBytes = usualLeastBytes);
    Autosave(Autosave const&) = delete;
    Autosave& operator=(Autosave const&) = delete;
    /// Leaves the file.
    ~Autosave();

    /// What `recoverable` shows for the file, for example the name of the document's own file.
    void setName(urString::CString name);
    /// Writes all changes and waits until they are on the disk. After an error the changes of earlier calls are still
    /// there, and the next call writes the whole document. Does nothing when nothing has changed. An error once the
    /// document is gone or has another autosave.
    urUtil::Error write();
    /// Removes the file. The next `write` begins a new one.
    urUtil::Error discard();
    /// Where the file is, or will be.
    [[nodiscard]] urString::IString const& path() const noexcept;

private:
    class Journal;
    friend NX_API urUtil::Error autosave(Document& document, urString::IString const& folder,
                                         urString::CString const& name);

    std::unique_ptr<Journal> journal_;
};

/// Writes what has changed since the last call to a file in `folder`, as `Autosave::write` does. The document keeps the
/// `Autosave`; another folder gets a new file instead. `save` removes the file; the end of the document leaves it, so
/// call `discardAutosave` when the user closes without saving. `name` is what `recoverable` shows.
NX_API urUtil::Error autosave(Document& document, urString::IString const& folder, urString::CString const& name = {});
/// Removes the file of `autosave`, if there is one.
NX_API urUtil::Error discardAutosave(Document& document);

}  // namespace nxSupport
