// Replaces files as a whole.
#include "foundation/urOS/AtomicFile.h"

#include <array>
#include <cerrno>
#include <string>
#include <utility>

#include "foundation/urOS/Uuid.h"
#include "foundation/urOS/impl/descriptors.h"
#include "foundation/urOS/impl/newFile.h"

namespace urOS {
namespace {

namespace fs = std::filesystem;
using urUtil::Error;

/// The target of a chain of links, even if it does not exist yet. The name itself where only the system can follow it,
/// as for standard output when that is a pipe.
fs::path behindLinks(fs::path name) {
    constexpr int longestChain = 40;  // if it is longer, opening reports the reason
    std::error_code unknown;
    fs::path real = fs::canonical(name, unknown);
    if (!unknown) return real;
    for (int i = 0; i < longestChain && fs::is_symlink(name, unknown) && !fs::exists(name, unknown); ++i) {
        name = name.parent_path() / fs::read_symlink(name, unknown);
    }
    return name;
}

/// An unused name in the target's folder, short enough for every file system.
fs::path nameBeside(fs::path const& target) {
    Uuid id;
    id.generate();
    urString::CString const hidden = urString::CString::format(".nx-%s.tmp", id.asString().c_str());
    return target.parent_path() / hidden.c_str();
}

urString::IString multibyte(fs::path const& path) { return {path.string(), urString::Encoding::multibyte}; }

Error copy(File& from, File& to) {
    std::array<char, std::size_t(32) * 1024> buffer;
    for (;;) {
        std::size_t done = 0;
        if (Error error = from.read(buffer.data(), buffer.size(), &done); error.isError() || done == 0) return error;
        if (Error error = to.write(buffer.data(), done); error.isError()) return error;
    }
}

}  // namespace

AtomicFile::~AtomicFile() { discard(); }

Error AtomicFile::open(urString::IString const& path, Special special) {
    discard();
    std::string const name(path.asMultibyte());
    error_ = impl::faultOfName(name);
    if (error_.isError()) return error_;
    target_ = behindLinks(name);
    error_ = create(special);
    return error_;
}

Error AtomicFile::create(Special special) {
    std::error_code unknown;
    fs::file_status const former = fs::status(target_, unknown);
    if (!fs::status_known(former)) return Error::fromSystem(unknown, target_.string());
    bool const exists = fs::exists(former);
    if (exists && !fs::is_regular_file(former)) {
        if (special == Special::refused) return Error::fromSystem(EINVAL, target_.string());
        way_ = Way::directly;
        return file_.open(multibyte(target_), openWrite);
    }
    if (exists && !impl::mayWrite(target_)) return Error::fromSystem(errno, target_.string());
    // Never more permissive than the file to replace, not even before the final permissions are set.
    constexpr int widest = 0666;
    way_ = Way::byReplacing;
    if (createBeside(exists, exists ? static_cast<int>(former.permissions()) & widest : widest)) return {};
    if (!exists) return Error::fromSystem(errno, target_.string());
    way_ = Way::byOverwriting;
    use(impl::openScratch());
    return file_.isOpen() ? openFormer() : Error::fromSystem(errno, "temporary folder");
}

/// From here on, later changes of the file at the target's name have no effect.
Error AtomicFile::openFormer() {
    static_cast<void>(former_.attach(impl::openRegular(target_), File::Ownership::own));
    return former_.isOpen() ? Error() : Error::fromSystem(errno, target_.string());
}

/// False, with `errno` set, when no file can be created there that differs from an existing target only in its content.
bool AtomicFile::createBeside(bool exists, int permissions) {
    fs::path name = nameBeside(target_);
    bool isNamed = false;
    int const descriptor = impl::openNew(name, permissions, isNamed);
    if (descriptor < 0) return false;
    temporary_ = std::move(name);
    if (!isNamed) nameless_ = descriptor;
    use(descriptor);
    if (!exists || impl::resemble(descriptor, target_)) return true;
    discard();
    return false;
}

void AtomicFile::use(int descriptor) { static_cast<void>(file_.attach(descriptor, File::Ownership::own)); }

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
    if (error_.ok() && way_ == Way::byReplacing) error_ = replace();
    if (error_.ok() && way_ == Way::byOverwriting) error_ = overwrite();
    Error const closed = file_.close();
    if (error_.ok()) error_ = closed;
    discard();
    return error_;
}

Error AtomicFile::replace() {
    if (Error error = file_.sync(); error.isError()) return error;  // takes long: while there is no name to be left
    if (nameless_ >= 0 && !impl::giveName(nameless_, temporary_)) return Error::fromSystem(errno, target_.string());
    nameless_ = -1;
    if (Error error = file_.close(); error.isError()) return error;  // an open file cannot be renamed on Windows
    std::error_code unmoved;
    fs::rename(temporary_, target_, unmoved);
    if (unmoved == std::errc::device_or_resource_busy) {  // a mount point
        way_ = Way::byOverwriting;
        Error const opened = openFormer();
        return opened.ok() ? file_.open(multibyte(temporary_), openRead) : opened;
    }
    if (unmoved) return Error::fromSystem(unmoved, target_.string());
    temporary_.clear();
    return impl::syncFolder(target_.parent_path());
}

/// Copies the content of the temporary file into the target.
Error AtomicFile::overwrite() {
    std::uint64_t size = 0;
    Error error = file_.size(size);
    // Detects a full disk while the old content still exists.
    if (error.ok() && !impl::reserve(former_.descriptor(), size)) error = Error::fromSystem(errno, target_.string());
    if (error.ok()) error = file_.seek(0);
    if (error.ok()) error = copy(file_, former_);
    if (error.ok() && !impl::resize(former_.descriptor(), size)) error = Error::fromSystem(errno, target_.string());
    if (error.ok()) error = former_.sync();
    Error const closed = former_.close();
    return error.ok() ? closed : error;
}

void AtomicFile::discard() noexcept {
    static_cast<void>(file_.close());
    static_cast<void>(former_.close());
    std::error_code ignored;
    if (!temporary_.empty() && nameless_ < 0) fs::remove(temporary_, ignored);
    temporary_.clear();
    nameless_ = -1;
}

}  // namespace urOS
