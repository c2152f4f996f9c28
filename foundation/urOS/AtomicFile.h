// A file that is replaced as a whole or not at all.
#pragma once

#include <filesystem>

#include "foundation/ur/Export.h"
#include "foundation/urOS/File.h"

namespace urOS {

/// Writes beside its target and takes the target's place when committed, so that an error, an exception or a crash
/// leaves the old file as it was and nobody reads a half-written one.
///
/// The new file has the permissions of the old one, and its owner where the process may set it; on Windows it has what
/// its folder gives. A link is followed: the file it names is replaced, or made. A target that is no regular file (a
/// pipe, a terminal) is written to directly, and a write-protected one is not replaced. What is not committed is
/// dropped with the object.
class NX_API AtomicFile final : public IOStream {
public:
    AtomicFile() = default;
    AtomicFile(AtomicFile const&) = delete;
    AtomicFile& operator=(AtomicFile const&) = delete;
    ~AtomicFile() override;

    /// Gets ready to replace the file at `path`; an earlier, uncommitted one is dropped.
    urUtil::Error open(urString::IString const& path);
    /// Puts the new file in its place. When a write failed, that error comes back and the old file stays.
    urUtil::Error commit();

    /// Nothing is there to be read: an error.
    urUtil::Error read(void* buffer, std::size_t count, std::size_t* done = nullptr) override;
    urUtil::Error write(void const* buffer, std::size_t count, std::size_t* done = nullptr) override;

private:
    urUtil::Error create();
    void discard() noexcept;

    File file_;
    std::filesystem::path target_;
    std::filesystem::path temporary_;  ///< what the open file is called beside the target; empty for a device
    int nameless_ = -1;                ///< the open file's descriptor as long as it does not have that name
    urUtil::Error error_;
};

}  // namespace urOS
