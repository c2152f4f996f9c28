// A file that is replaced as a whole or not at all.
#pragma once

#include <filesystem>

#include "foundation/ur/Export.h"
#include "foundation/urOS/File.h"

namespace urOS {

/// Writes to a file next to its target and replaces the target on commit. An error, an exception or a crash before
/// that keeps the old file; no reader sees a half-written file. File and folder are flushed to the disk.
///
/// An existing file keeps its names, owner, permissions and extended attributes (access lists): if a new file could not
/// replace it or would lose one of these, `commit` overwrites the content of the old file. This applies to a file with
/// several names (hard links), a file of another owner or group that the process may not give files to, a read-only
/// folder and a mount point. An error or a crash while overwriting can leave a mixture of both contents: docs/files.md
/// says when.
///
/// Follows links: replaces or creates the file that a link names. Writes directly to a target that is not a regular
/// file (a pipe, a terminal), unless that is refused; a write-protected target is an error. The destructor drops
/// uncommitted content.
class NX_API AtomicFile final : public IOStream {
public:
    /// How to treat a target that is not a regular file.
    enum class Special { written, refused };

    AtomicFile() = default;
    AtomicFile(AtomicFile const&) = delete;
    AtomicFile& operator=(AtomicFile const&) = delete;
    ~AtomicFile() override;

    /// Prepares to replace the file at `path`; drops an earlier, uncommitted content.
    urUtil::Error open(urString::IString const& path, Special special = Special::written);
    /// Moves the new file into place; it is on the disk when this returns. Returns the error of an earlier write, and
    /// the old file stays. If only flushing the folder fails, returns that error with the new file in place.
    urUtil::Error commit();

    /// Always an error: the file is write-only.
    urUtil::Error read(void* buffer, std::size_t count, std::size_t* done = nullptr) override;
    urUtil::Error write(void const* buffer, std::size_t count, std::size_t* done = nullptr) override;

private:
    /// How the content reaches the target.
    enum class Way { directly, byReplacing, byOverwriting };

    urUtil::Error create(Special special);
    [[nodiscard]] bool createBeside(bool exists, int permissions);
    void use(int descriptor);
    urUtil::Error openFormer();
    urUtil::Error replace();
    urUtil::Error overwrite();
    void discard() noexcept;

    File file_;    ///< the file being written
    File former_;  ///< the target, if its content will be overwritten
    Way way_ = Way::directly;
    std::filesystem::path target_;
    std::filesystem::path temporary_;  ///< the name of the open file next to the target
    int nameless_ = -1;                ///< the open file's descriptor while it does not have that name
    urUtil::Error error_;
};

}  // namespace urOS
