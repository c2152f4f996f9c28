// A private file that is deleted when it is closed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/urUtil/Error.h"

namespace urKRCache {

/// An open file that is deleted with this object. No other user can read it, and no link leads elsewhere.
///
/// It is locked while open: a second object with the same name fails to open it, in this process or another. A file
/// left behind by a killed process is emptied and reused.
class ScratchFile {
public:
    ScratchFile() noexcept = default;
    ScratchFile(ScratchFile const&) = delete;
    ScratchFile& operator=(ScratchFile const&) = delete;
    ~ScratchFile();

    urUtil::Error open(std::string const& path);
    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
    /// The largest size that a file may have.
    [[nodiscard]] static std::uint64_t sizeLimit() noexcept;

    /// Both move all bytes or fail. Writing after the end extends the file.
    urUtil::Error writeAt(std::uint64_t position, char const* bytes, std::size_t count) noexcept;
    urUtil::Error readAt(std::uint64_t position, char* bytes, std::size_t count) noexcept;

private:
    std::string path_;
    int descriptor_ = -1;
};

}  // namespace urKRCache
