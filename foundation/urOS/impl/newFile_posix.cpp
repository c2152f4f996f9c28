// New files on systems where files have owners and, on Linux, may be nameless.
#include <sys/stat.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/xattr.h>
#endif

#include <cerrno>
#include <string>
#include <string_view>

#include "foundation/urOS/impl/descriptors.h"
#include "foundation/urOS/impl/newFile.h"

namespace urOS::impl {
namespace {

namespace fs = std::filesystem;
using urUtil::Error;

constexpr mode_t permissionBits = 07777;

/// Negative where the file system has no nameless files, or none that can be named later.
int openNameless([[maybe_unused]] fs::path const& folder, [[maybe_unused]] int permissions) {
#ifdef O_TMPFILE
    if (::faccessat(AT_FDCWD, "/proc/self/fd", X_OK, AT_EACCESS) != 0) return -1;
    return openDescriptor(folder.empty() ? "." : folder, O_TMPFILE | O_RDWR, permissions);
#else
    return -1;
#endif
}

#if defined(__linux__)

/// The result of a call that first returns the size; empty where files have no attributes.
template <class Get>
std::string textFrom(Get get) {
    std::string text;
    ssize_t size = get(nullptr, 0);
    if (size <= 0) return text;
    text.resize(static_cast<std::size_t>(size));
    size = get(text.data(), text.size());
    text.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return text;
}

/// False unless both have the same attributes now.
bool copyAttributes(fs::path const& from, int to) {
    std::string const names =
        textFrom([&](char* text, std::size_t size) { return ::listxattr(from.c_str(), text, size); });
    for (std::size_t at = 0; at < names.size(); at = names.find('\0', at) + 1) {
        char const* const name = names.c_str() + at;
        std::string const value =
            textFrom([&](char* text, std::size_t size) { return ::getxattr(from.c_str(), name, text, size); });
        // The system may already have set a label that the process must not set.
        bool const isThere =
            value == textFrom([&](char* text, std::size_t size) { return ::fgetxattr(to, name, text, size); });
        if (!isThere && ::fsetxattr(to, name, value.data(), value.size(), 0) != 0) return false;
    }
    // The folder may have given the new file an attribute that the former does not have.
    return ::flistxattr(to, nullptr, 0) <= static_cast<ssize_t>(names.size());
}

#else

bool copyAttributes(fs::path const& /*from*/, int /*to*/) { return true; }

#endif

}  // namespace

bool mayWrite(fs::path const& file) { return ::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0; }

int openNew(fs::path const& name, int permissions, bool& isNamed) {
    int const nameless = openNameless(name.parent_path(), permissions);
    isNamed = nameless < 0;
    return isNamed ? openDescriptor(name, O_RDWR | O_CREAT | O_EXCL, permissions) : nameless;
}

bool giveName(int descriptor, fs::path const& name) {
    std::string const self = "/proc/self/fd/" + std::to_string(descriptor);
    return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

int openScratch() {
    std::error_code none;
    fs::path const folder = fs::temp_directory_path(none);
    std::string name = (none ? fs::path("/tmp") : folder) / ".nx-XXXXXX";
    int const descriptor = ::mkstemp(name.data());
    if (descriptor < 0) return -1;
    static_cast<void>(::unlink(name.c_str()));
    static_cast<void>(::fcntl(descriptor, F_SETFD, FD_CLOEXEC));
    return descriptor;
}

int openRegular(fs::path const& file) {
    int const descriptor = openDescriptor(file, O_WRONLY | O_NOFOLLOW | O_NONBLOCK, 0);
    struct stat facts = {};
    if (descriptor < 0 || (::fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode))) return descriptor;
    static_cast<void>(::close(descriptor));
    errno = EINVAL;
    return -1;
}

bool resemble(int descriptor, fs::path const& former) {
    struct stat old = {};
    struct stat now = {};
    if (::stat(former.c_str(), &old) != 0 || ::fstat(descriptor, &now) != 0) return false;
    if (old.st_nlink > 1) return false;
    bool const sameOwner = old.st_uid == now.st_uid && old.st_gid == now.st_gid;
    if (!sameOwner && ::fchown(descriptor, old.st_uid, old.st_gid) != 0) return false;
    // Permissions come last: they may be part of an access list.
    return copyAttributes(former, descriptor) && ::fchmod(descriptor, old.st_mode & permissionBits) == 0;
}

bool reserve([[maybe_unused]] int descriptor, [[maybe_unused]] std::uint64_t bytes) {
#ifdef FALLOC_FL_KEEP_SIZE
    if (bytes == 0 || ::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(bytes)) == 0) return true;
    return errno != ENOSPC && errno != EDQUOT && errno != EFBIG;
#else
    return true;
#endif
}

bool resize(int descriptor, std::uint64_t bytes) { return ::ftruncate(descriptor, static_cast<off_t>(bytes)) == 0; }

Error syncFolder(fs::path const& folder) {
    int const descriptor = openDescriptor(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY, 0);
    if (descriptor < 0) return {};  // writable but not readable
    int const flushed = flushToDisk(descriptor);
    Error error =
        flushed == 0 || errno == EINVAL ? Error() : Error::fromSystem(errno, folder.string() + ": flush to disk");
    static_cast<void>(::close(descriptor));
    return error;
}

}  // namespace urOS::impl
