// A folder for what the cache pages out.
#pragma once

#include <string>

namespace nxhost {

/// A new folder below the system's for temporary files. It goes with this object, with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder();

    /// The system's own folder when no new one could be made.
    [[nodiscard]] std::string const& path() const noexcept { return path_; }

private:
    std::string path_;
    bool isOwn_;
};

}  // namespace nxhost
