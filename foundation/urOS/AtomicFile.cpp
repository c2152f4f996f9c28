// Replacing a file as a whole.
#include "foundation/urOS/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "foundation/urOS/Uuid.h"

namespace urOS {
namespace {

using urUtil::Error;

constexpr mode_t permissionBits = 07777;

/// What a chain of links leads to, whether it is there yet or not. The name itself where the system alone knows, as
/// for the standard output when that is a pipe.
std::string behindLinks(std::filesystem::path name) {
    namespace fs = std::filesystem;
    constexpr int longestChain = 40;  // of a longer one, opening says why it cannot be followed
    std::error_code failure;
    fs::path const real = fs::canonical(name, failure);
    if (!failure) return real.string();
    for (int i = 0; i < longestChain && fs::is_symlink(name, failure) && !fs::exists(name, failure); ++i) {
        name = name.parent_path() / fs::read_symlink(name, failure);
    }
    return name.string();
}

/// A name in the target's folder that no other file has, short enough for every file system.
std::string nameBeside(std::string const& target) {
    Uuid id;
    id.generate();
    urString::CString const hidden = urString::CString::format(".nx-%s.tmp", id.asString().c_str());
    return (std::filesystem::path(target).parent_path() / hidden.c_str()).string();
}

/// A file without a name in the target's folder, of which nothing is left when the process dies; negative where the
/// file system has no such files, or none that could be named later.
int openNameless(std::string const& target, mode_t mode) {
#ifdef O_TMPFILE
    if (::access("/proc/self/fd", X_OK) != 0) return -1;
    std::filesystem::path const folder = std::filesystem::path(target).parent_path();
    return ::open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, mode);
#else
    return -1;
#endif
}

/// Gives a nameless file its name.
bool giveName(int descriptor, std::string const& name) {
    std::string const self = "/proc/self/fd/" + std::to_string(descriptor);
    return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

/// Makes an open file resemble the one it is to replace.
Error resemble(int descriptor, struct stat const& former) {
    // Giving a file away is a privilege; without it the new file belongs to whoever writes it.
    bool const given = ::fchown(descriptor, former.st_uid, former.st_gid) == 0;
    mode_t const mode = former.st_mode & permissionBits;
    mode_t const allowed = given ? mode : mode & ~static_cast<mode_t>(S_ISUID | S_ISGID);
    return ::fchmod(descriptor, allowed) == 0 ? Error() : Error::fromSystem(errno, "permissions");
}

}  // namespace

AtomicFile::~AtomicFile() { discard(); }

Error AtomicFile::open(urString::IString const& path) {
    discard();
    std::string const name(path.asMultibyte());
    target_ = behindLinks(name);
    // The system would replace what stands before a NUL: another file.
    bool const named = name.find('\0') == std::string::npos;
    error_ = name.empty() ? Error::fromSystem(ENOENT, "a file without a name")
             : named      ? create()
                          : Error::fromSystem(EINVAL, name.c_str());
    return error_;
}

Error AtomicFile::create() {
    struct stat former = {};
    bool const exists = ::stat(target_.c_str(), &former) == 0;
    if (!exists && errno != ENOENT) return Error::fromSystem(errno, target_);
    if (exists && !S_ISREG(former.st_mode)) {
        return file_.open(urString::IString(target_, urString::Encoding::multibyte), openWrite);
    }
    if (exists && ::access(target_.c_str(), W_OK) != 0) return Error::fromSystem(errno, target_);
    // Never wider open than the file to be replaced, not even before the permissions are set in full.
    mode_t const mode = exists ? former.st_mode & 0666 : 0666;
    int descriptor = openNameless(target_, mode);
    nameless_ = descriptor >= 0 ? descriptor : -1;
    if (descriptor < 0) {
        std::string const name = nameBeside(target_);
        descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (descriptor < 0) return Error::fromSystem(errno, target_);
        temporary_ = name;
    }
    static_cast<void>(file_.attach(descriptor, File::Ownership::own));
    return exists ? resemble(descriptor, former) : Error();
}

Error AtomicFile::read(void* /*buffer*/, std::size_t /*count*/, std::size_t* done) {
    if (done) *done = 0;
    return Error::fromSystem(EBADF, "file open for writing only");
}

Error AtomicFile::write(void const* buffer, std::size_t count, std::size_t* done) {
    if (done) *done = 0;
    if (error_.ok()) error_ = file_.write(buffer, count, done);
    return error_;
}

Error AtomicFile::commit() {
    if (!file_.isOpen() && error_.ok()) return Error::fromSystem(EBADF, "no file to commit");
    if (error_.ok() && nameless_ >= 0) {
        std::string const name = nameBeside(target_);
        bool const named = giveName(nameless_, name);
        if (!named) error_ = Error::fromSystem(errno, target_);
        if (named) temporary_ = name;
    }
    Error const closed = file_.close();
    if (error_.ok()) error_ = closed;
    if (error_.ok() && !temporary_.empty()) {
        bool const moved = ::rename(temporary_.c_str(), target_.c_str()) == 0;
        if (!moved) error_ = Error::fromSystem(errno, target_);
        if (moved) temporary_.clear();
    }
    discard();
    return error_;
}

void AtomicFile::discard() noexcept {
    static_cast<void>(file_.close());
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
    temporary_.clear();
    nameless_ = -1;
}

}  // namespace urOS
