// A file of our own that nobody else may read or share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/urUtil/Error.h"

namespace urKRCache {

/// An open file that is deleted with this object. No other user can read it and no link leads elsewhere.
///
/// It is locked for as long as it is open: a second one of that name does not open, in this process or another,
/// but one left behind by a process that was killed is emptied and taken over.
class ScratchFile {
public:
    ScratchFile() noexcept = default;
    ScratchFile(ScratchFile const&) = delete;
    ScratchFile& operator=(ScratchFile const&) = delete;
    ~ScratchFile();

    urUtil::Error open(std::string const& path);
    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
    /// How long the file may become.
    [[nodiscard]] static std::uint64_t sizeLimit() noexcept;

    /// All of it or a failure; positions beyond the end are fine for writing.
    urUtil::Error writeAt(std::uint64_t position, char const* bytes, std::size_t count) noexcept;
    urUtil::Error readAt(std::uint64_t position, char* bytes, std::size_t count) noexcept;

private:
    std::string path_;
    int descriptor_ = -1;
};

}  // namespace urKRCache
