// A temporary folder for the cache's page file.
#pragma once

#include <filesystem>
#include <string>

#include "tools/nxhost/Interrupt.h"

namespace nxhost {

/// A new folder in the folder that TMPDIR names, or else in /tmp. The destructor removes it with the cache's file.
///
/// Its process holds a lock on it. A folder without a lock was left by a killed process; the next process that creates
/// a folder removes it. It removes only the cache's file and the empty folder, and only folders of the same user.
class TemporaryFolder {
public:
    /// Throws an `nxRFL::Exception` if neither place can hold it. A signal that kills the process removes it as well.
    /// The interrupt must outlive this.
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
    int lock_ = -1;  ///< a descriptor of the folder
};

}  // namespace nxhost
