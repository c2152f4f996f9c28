// A file that is replaced as a whole or not at all.
#pragma once

#include <filesystem>

#include "foundation/ur/Export.h"
#include "foundation/urOS/File.h"

namespace urOS {

/// Writes beside its target and takes the target's place when committed. An error, an exception or a crash before that
/// leaves the old file as it was, and nobody reads a half-written one. File and folder are flushed to the disk.
///
/// An existing file keeps its names, owner, permissions and extended attributes (access lists): where a new file could
/// not take its place or would lose one of these, `commit` overwrites the content of the old one. That is so for a file
/// with several names (hard links), of another owner or group that the process may not give files to, in a folder that
/// may not be written, and for a mount point. An error or a crash while overwriting can leave a mixture of both
/// contents: docs/files.md says when.
///
/// A link is followed: the file it names is replaced, or made. A target that is no regular file (a pipe, a terminal) is
/// written to directly unless it is refused; a write-protected one is an error. What is not committed is dropped with
/// the object.
class NX_API AtomicFile final : public IOStream {
public:
    /// What becomes of a target that is no regular file.
    enum class Special { written, refused };

    AtomicFile() = default;
    AtomicFile(AtomicFile const&) = delete;
    AtomicFile& operator=(AtomicFile const&) = delete;
    ~AtomicFile() override;

    /// Gets ready to replace the file at `path`; an earlier, uncommitted one is dropped.
    urUtil::Error open(urString::IString const& path, Special special = Special::written);
    /// Puts the new file in its place, on the disk when this returns. Returns the error of an earlier write, and the
    /// old file stays. When only flushing the folder fails, returns that error with the new file in place.
    urUtil::Error commit();

    /// Nothing is there to be read: an error.
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

    File file_;    ///< what is written to
    File former_;  ///< the target, where its content is to be overwritten
    Way way_ = Way::directly;
    std::filesystem::path target_;
    std::filesystem::path temporary_;  ///< what the open file is called beside the target
    int nameless_ = -1;                ///< the open file's descriptor as long as it does not have that name
    urUtil::Error error_;
};

}  // namespace urOS
