// Replacing a file as a whole.
#include "foundation/urOS/AtomicFile.h"

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

/// What a chain of links leads to, whether it is there yet or not. The name itself where the system alone knows, as
/// for the standard output when that is a pipe.
fs::path behindLinks(fs::path name) {
    constexpr int longestChain = 40;  // of a longer one, opening says why it cannot be followed
    std::error_code unknown;
    fs::path real = fs::canonical(name, unknown);
    if (!unknown) return real;
    for (int i = 0; i < longestChain && fs::is_symlink(name, unknown) && !fs::exists(name, unknown); ++i) {
        name = name.parent_path() / fs::read_symlink(name, unknown);
    }
    return name;
}

/// A name in the target's folder that no other file has, short enough for every file system.
fs::path nameBeside(fs::path const& target) {
    Uuid id;
    id.generate();
    urString::CString const hidden = urString::CString::format(".nx-%s.tmp", id.asString().c_str());
    return target.parent_path() / hidden.c_str();
}

}  // namespace

AtomicFile::~AtomicFile() { discard(); }

Error AtomicFile::open(urString::IString const& path) {
    discard();
    std::string const name(path.asMultibyte());
    error_ = impl::faultOfName(name);
    if (error_.isError()) return error_;
    target_ = behindLinks(name);
    error_ = create();
    return error_;
}

Error AtomicFile::create() {
    std::error_code unknown;
    fs::file_status const former = fs::status(target_, unknown);
    if (!fs::status_known(former)) return Error::fromSystem(unknown, target_.string());
    if (fs::exists(former) && !fs::is_regular_file(former)) {
        return file_.open(urString::IString(target_.string(), urString::Encoding::multibyte), openWrite);
    }
    if (fs::exists(former) && !impl::mayWrite(target_)) return Error::fromSystem(errno, target_.string());
    // Never wider open than the file to be replaced, not even before the permissions are set in full.
    constexpr int widest = 0666;
    int const permissions = fs::exists(former) ? static_cast<int>(former.permissions()) & widest : widest;
    fs::path name = nameBeside(target_);
    bool isNamed = false;
    int const descriptor = impl::openNew(name, permissions, isNamed);
    if (descriptor < 0) return Error::fromSystem(errno, target_.string());
    temporary_ = std::move(name);
    if (!isNamed) nameless_ = descriptor;
    static_cast<void>(file_.attach(descriptor, File::Ownership::own));
    return fs::exists(former) ? impl::resemble(descriptor, target_) : Error();
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
        if (!impl::giveName(nameless_, temporary_)) error_ = Error::fromSystem(errno, target_.string());
        if (error_.ok()) nameless_ = -1;
    }
    Error const closed = file_.close();
    if (error_.ok()) error_ = closed;
    if (error_.ok() && !temporary_.empty()) {
        std::error_code unmoved;
        fs::rename(temporary_, target_, unmoved);
        if (unmoved) error_ = Error::fromSystem(unmoved, target_.string());
        if (!unmoved) temporary_.clear();
    }
    discard();
    return error_;
}

void AtomicFile::discard() noexcept {
    static_cast<void>(file_.close());
    std::error_code ignored;
    if (!temporary_.empty() && nameless_ < 0) fs::remove(temporary_, ignored);
    temporary_.clear();
    nameless_ = -1;
}

}  // namespace urOS
