// New files where files have owners and, on Linux, may lack a name.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "foundation/urOS/impl/descriptors.h"
#include "foundation/urOS/impl/newFile.h"

namespace urOS::impl {
namespace {

using urUtil::Error;

/// Negative where the file system has no files without a name, or none that could be named later.
int openNameless([[maybe_unused]] std::filesystem::path const& folder, [[maybe_unused]] int permissions) {
#ifdef O_TMPFILE
    if (::access("/proc/self/fd", X_OK) != 0) return -1;
    return openDescriptor(folder.empty() ? "." : folder, O_TMPFILE | O_WRONLY, permissions);
#else
    return -1;
#endif
}

}  // namespace

bool mayWrite(std::filesystem::path const& file) { return ::access(file.c_str(), W_OK) == 0; }

int openNew(std::filesystem::path const& name, int permissions, bool& isNamed) {
    int const nameless = openNameless(name.parent_path(), permissions);
    isNamed = nameless < 0;
    return isNamed ? openDescriptor(name, O_WRONLY | O_CREAT | O_EXCL, permissions) : nameless;
}

bool giveName(int descriptor, std::filesystem::path const& name) {
    std::string const self = "/proc/self/fd/" + std::to_string(descriptor);
    return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

Error resemble(int descriptor, std::filesystem::path const& former) {
    struct stat facts = {};
    if (::stat(former.c_str(), &facts) != 0) return Error::fromSystem(errno, "permissions");
    // Giving a file away is a privilege; without it the new file belongs to whoever writes it.
    bool const given = ::fchown(descriptor, facts.st_uid, facts.st_gid) == 0;
    constexpr mode_t permissionBits = 07777;
    mode_t const mode = facts.st_mode & permissionBits;
    mode_t const allowed = given ? mode : mode & ~static_cast<mode_t>(S_ISUID | S_ISGID);
    return ::fchmod(descriptor, allowed) == 0 ? Error() : Error::fromSystem(errno, "permissions");
}

}  // namespace urOS::impl
