// Scratch files on POSIX systems, with owners, links and advisory locks.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <limits>
#include <utility>

#include "krcache/impl/ScratchFile.h"

namespace urKRCache {
namespace {

using urUtil::Error;

constexpr mode_t ownerOnly = 0600;
constexpr int flags = O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

/// Moves all bytes by repeating `move`, which returns what the system calls return.
template <class Move>
Error moveAll(std::size_t count, Move move, char const* what) noexcept {
    std::size_t done = 0;
    while (done < count) {
        ssize_t const moved = move(done);
        if (moved > 0) {
            done += static_cast<std::size_t>(moved);
        } else if (moved == 0) {
            return Error(0, "the file is shorter than what was written");
        } else if (errno != EINTR) {
            return Error::fromSystem(errno, what);
        }
    }
    return {};
}

bool isAt(int descriptor, std::string const& path) noexcept {
    struct stat ours = {};
    struct stat named = {};
    return ::fstat(descriptor, &ours) == 0 && ::lstat(path.c_str(), &named) == 0 && ours.st_dev == named.st_dev &&
           ours.st_ino == named.st_ino;
}

/// Checks and locks an open file, and empties it.
Error takeOwnership(int descriptor, std::string const& path, bool& deletedMeanwhile) {
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0) return Error::fromSystem(errno, "status");
    if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid() || status.st_nlink > 1) {
        return Error(EACCES, "the name is taken by something that is not a file of this user alone");
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? Error(EWOULDBLOCK, "another manager uses the file")
                                    : Error::fromSystem(errno, "lock");
    }
    deletedMeanwhile = !isAt(descriptor, path);
    if (deletedMeanwhile) return Error(ENOENT, "the file keeps being deleted");
    if (::fchmod(descriptor, ownerOnly) != 0) return Error::fromSystem(errno, "permissions");
    return ::ftruncate(descriptor, 0) == 0 ? Error() : Error::fromSystem(errno, "empty");
}

Error openOnce(std::string const& path, int& descriptor, bool& deletedMeanwhile) {
    deletedMeanwhile = false;
    descriptor = ::open(path.c_str(), flags, ownerOnly);
    if (descriptor < 0) return Error::fromSystem(errno, "open");
    Error error = takeOwnership(descriptor, path, deletedMeanwhile);
    if (error.isError()) ::close(std::exchange(descriptor, -1));
    return error;
}

}  // namespace

ScratchFile::~ScratchFile() {
    if (!isOpen()) return;
    if (isAt(descriptor_, path_)) ::unlink(path_.c_str());
    ::close(descriptor_);
}

Error ScratchFile::open(std::string const& path) {
    std::error_code unknown;
    path_ = std::filesystem::absolute(path, unknown).string();  // absolute, because the process may change its
                                                                // directory
    if (unknown) path_ = path;
    // The file's former owner may delete it between our open and our lock, but hardly several times in a row.
    Error error;
    bool deletedMeanwhile = true;
    for (int attempt = 0; attempt < 10 && deletedMeanwhile; ++attempt) {
        error = openOnce(path_, descriptor_, deletedMeanwhile);
    }
    return error;
}

// Writing beyond the process's limit would raise a signal that ends the process.
std::uint64_t ScratchFile::sizeLimit() noexcept {
    constexpr std::uint64_t largest = std::numeric_limits<off_t>::max();
    struct rlimit limit = {};
    if (::getrlimit(RLIMIT_FSIZE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return largest;
    return std::min<std::uint64_t>(limit.rlim_cur, largest);
}

Error ScratchFile::writeAt(std::uint64_t position, char const* bytes, std::size_t count) noexcept {
    return moveAll(
        count,
        [&](std::size_t done) {
            return ::pwrite(descriptor_, bytes + done, count - done, static_cast<off_t>(position + done));
        },
        "write");
}

Error ScratchFile::readAt(std::uint64_t position, char* bytes, std::size_t count) noexcept {
    return moveAll(
        count,
        [&](std::size_t done) {
            return ::pread(descriptor_, bytes + done, count - done, static_cast<off_t>(position + done));
        },
        "read");
}

}  // namespace urKRCache
