// A folder for what the cache pages out.
#pragma once

#include <filesystem>
#include <string>

#include "tools/nxhost/Interrupt.h"

namespace nxhost {

/// A new folder in the one that TMPDIR names, or else in /tmp. It goes with this object, with the cache's file in it.
///
/// Its process holds a lock on it. So what a killed process has left is known by the lack of one, and a new folder's
/// maker removes it; only the cache's file is, and only in folders of this user.
class TemporaryFolder {
public:
    /// Throws an `nxRFL::Exception` when neither place has room for it. A signal that kills the process removes it as
    /// well. The interrupt outlives this.
    explicit TemporaryFolder(Interrupt& interrupt);
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder();

    [[nodiscard]] std::string const& path() const noexcept { return path_; }

private:
    bool makeIn(std::filesystem::path const& parent);
    bool make(std::string const& pattern);

    Interrupt& interrupt_;
    std::string path_;
    std::string pageFile_;
    int lock_ = -1;  ///< the folder, open
};

}  // namespace nxhost
