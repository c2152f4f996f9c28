// Implements files through POSIX calls.
#include "foundation/urOS/File.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>

#include "foundation/urOS/impl/descriptors.h"

namespace urOS {
namespace {

using urUtil::Error;

/// The number of bytes that one call accepts on every system.
unsigned oneTransfer(std::size_t bytes) { return static_cast<unsigned>(std::min<std::size_t>(bytes, 1U << 30)); }

int flagsOf(OpenMode mode) {
    int flags = !includes(mode, openWrite) ? O_RDONLY : includes(mode, openRead) ? O_RDWR : O_WRONLY;
    if (includes(mode, openAppend)) flags |= O_APPEND | O_CREAT;
    if (includes(mode, openNew)) flags |= O_CREAT | O_TRUNC;
    return flags;
}

/// Repeats a call that a signal interrupted.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

}  // namespace

File::~File() { static_cast<void>(close()); }

Error File::open(urString::IString const& path, OpenMode mode) {
    if (Error error = close(); error.isError()) return error;
    urString::CString const name = path.asMultibyte();
    if (Error error = impl::faultOfName(name); error.isError()) return error;
    std::filesystem::path const file = std::string(name.view());
    descriptor_ = uninterrupted([&] { return impl::openDescriptor(file, flagsOf(mode), 0666); });
    ownership_ = Ownership::own;
    return isOpen() ? Error() : Error::fromSystem(errno, name);
}

Error File::attach(int descriptor, Ownership ownership) {
    if (Error error = close(); error.isError()) return error;
    descriptor_ = descriptor;
    ownership_ = ownership;
    if (isOpen()) impl::carryBytes(descriptor);
    return {};
}

Error File::close() {
    int const descriptor = std::exchange(descriptor_, -1);
    if (descriptor < 0 || ownership_ == Ownership::borrowed) return {};
    // On the relevant systems an interrupted close has closed the file; repeating it could close another one.
    return ::close(descriptor) == 0 || errno == EINTR ? Error() : Error::fromSystem(errno, "close");
}

Error File::sync() {
    bool const isOnDisk = uninterrupted([&] { return impl::flushToDisk(descriptor_); }) == 0;
    return isOnDisk ? Error() : Error::fromSystem(errno, "flush to disk");
}

Error File::read(void* buffer, std::size_t count, std::size_t* done) {
    auto const got = uninterrupted([&] { return ::read(descriptor_, buffer, oneTransfer(count)); });
    if (done) *done = static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    return got >= 0 ? Error() : Error::fromSystem(errno, "read");
}

Error File::write(void const* buffer, std::size_t count, std::size_t* done) {
    auto const* bytes = static_cast<char const*>(buffer);
    std::size_t written = 0;
    Error error;
    while (written < count && error.ok()) {
        auto const put =
            uninterrupted([&] { return ::write(descriptor_, bytes + written, oneTransfer(count - written)); });
        if (put < 0) error = Error::fromSystem(errno, "write");
        written += static_cast<std::size_t>(std::max<ssize_t>(put, 0));
    }
    if (done) *done = written;
    return error;
}

Error File::seek(std::uint64_t position) {
    bool const found = ::lseek(descriptor_, static_cast<off_t>(position), SEEK_SET) >= 0;
    return found ? Error() : Error::fromSystem(errno, "seek");
}

Error File::tell(std::uint64_t& position) const {
    off_t const found = ::lseek(descriptor_, 0, SEEK_CUR);
    if (found < 0) return Error::fromSystem(errno, "tell");
    position = static_cast<std::uint64_t>(found);
    return {};
}

Error File::size(std::uint64_t& bytes) const {
    struct stat facts = {};
    if (::fstat(descriptor_, &facts) != 0) return Error::fromSystem(errno, "size");
    bytes = static_cast<std::uint64_t>(facts.st_size);
    return {};
}

}  // namespace urOS
