// Creates and removes temporary folders, including abandoned ones.
#include "tools/nxhost/TemporaryFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include "foundation/nxRFL/Exception.h"
#include "foundation/urUtil/Error.h"

namespace nxhost {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view namePattern = "nxhost-pages-XXXXXX";
constexpr std::string_view nameStart = namePattern.substr(0, namePattern.find('X'));
constexpr char const* pageFileName = "urKRCachePageFile.dat";

/// An open file or folder, or none.
class Handle {
public:
    explicit Handle(int descriptor) noexcept : descriptor_(descriptor) {}
    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;
    ~Handle() {
        if (isOpen()) close(descriptor_);
    }
    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
    [[nodiscard]] int get() const noexcept { return descriptor_; }

private:
    int const descriptor_;
};

int openFolder(char const* path) noexcept { return open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }

bool lock(int descriptor) noexcept { return flock(descriptor, LOCK_EX | LOCK_NB) == 0; }

bool isAt(int descriptor, char const* path) noexcept {
    struct stat ours = {};
    struct stat named = {};
    return fstat(descriptor, &ours) == 0 && lstat(path, &named) == 0 && ours.st_dev == named.st_dev &&
           ours.st_ino == named.st_ino;
}

/// Whether the folder's creator, or the cache whose file is in it, holds a lock.
bool isHeld(int folder) noexcept {
    if (!lock(folder)) return true;
    Handle const pageFile(openat(folder, pageFileName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return pageFile.isOpen() ? !lock(pageFile.get()) : errno != ENOENT;
}

void removeUnlessHeld(char const* path) noexcept {
    Handle const folder(openFolder(path));
    struct stat facts = {};
    if (!folder.isOpen() || fstat(folder.get(), &facts) != 0 || facts.st_uid != geteuid()) return;
    if (isHeld(folder.get()) || !isAt(folder.get(), path)) return;
    unlinkat(folder.get(), pageFileName, 0);
    rmdir(path);  // fails if the folder contains anything else
}

void removeAbandoned(fs::path const& parent) {
    std::error_code error;
    for (fs::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error)) {
        std::string const name = entry->path().filename().string();
        if (name.size() == namePattern.size() && name.starts_with(nameStart)) removeUnlessHeld(entry->path().c_str());
    }
}

}  // namespace

TemporaryFolder::TemporaryFolder(Interrupt& interrupt) : interrupt_(interrupt) {
    std::error_code unusable;
    fs::path const parent = fs::temp_directory_path(unusable);
    if ((unusable || !makeIn(parent)) && !makeIn("/tmp")) {
        urUtil::Error const error = urUtil::Error::fromSystem(errno, "no folder for temporary files: /tmp");
        throw nxRFL::Exception(urString::CString(error.message()));
    }
    pageFile_ = path_ + "/" + pageFileName;
    interrupt_.removeWhenKilled(pageFile_.c_str(), path_.c_str());
}

/// Returns false and sets `errno` if no folder can be created.
bool TemporaryFolder::makeIn(fs::path const& parent) {
    removeAbandoned(parent);
    // Before the new folder is locked, another process may take it for an abandoned one and remove it.
    constexpr int mostAttempts = 10;
    for (int i = 0; i < mostAttempts && !make((parent / namePattern).string()); ++i) continue;
    return lock_ >= 0;
}

/// Returns false if the new folder was removed at once.
bool TemporaryFolder::make(std::string const& pattern) {
    std::string name = pattern;
    if (mkdtemp(name.data()) == nullptr) return true;
    int const folder = openFolder(name.c_str());
    // Without support for locks, no other process can lock it either.
    bool const isLost = folder < 0 || (!lock(folder) && errno == EWOULDBLOCK) || !isAt(folder, name.c_str());
    if (isLost) {
        if (folder >= 0) close(folder);
        return false;
    }
    lock_ = folder;
    path_ = std::move(name);
    return true;
}

TemporaryFolder::~TemporaryFolder() {
    unlink(pageFile_.c_str());
    rmdir(path_.c_str());
    interrupt_.removeWhenKilled(nullptr, nullptr);
    close(lock_);
}

}  // namespace nxhost
