// Making and removing it.
#include "tools/nxhost/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>

namespace nxhost {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::error_code error;
    fs::path const parent = fs::temp_directory_path(error);
    std::string name = (parent / "nxhostXXXXXX").string();
    isOwn_ = !error && mkdtemp(name.data()) != nullptr;
    path_ = isOwn_ ? name : parent.string();
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    if (isOwn_) fs::remove_all(path_, ignored);
}

}  // namespace nxhost
