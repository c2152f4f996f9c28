// A folder for what the cache pages out.
#pragma once

#include <string>

#include "tools/nxhost/Interrupt.h"

namespace nxhost {

/// A new folder below the system's for temporary files. It goes with this object, with the cache's file in it.
///
/// Its process holds a lock on it. So what a killed process has left is known by the lack of one, and a new folder's
/// maker removes it; only the cache's file is, and only in folders of this user.
class TemporaryFolder {
public:
    /// A signal that kills the process removes it as well. The interrupt outlives this.
    explicit TemporaryFolder(Interrupt& interrupt);
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder();

    /// The system's own folder when no new one could be made.
    [[nodiscard]] std::string const& path() const noexcept { return path_; }

private:
    bool make(std::string const& pattern);

    Interrupt& interrupt_;
    std::string path_;
    std::string pageFile_;
    int lock_ = -1;  ///< the folder; negative when it is not our own
};

}  // namespace nxhost
