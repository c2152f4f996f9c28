// Reads without waiting.
#include "tools/nxhost/UploadFile.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "foundation/urUtil/Error.h"
#include "tools/nxhost/TransferEvent.h"

namespace nxhost {

using urString::CString;

UploadFile::UploadFile(CString const& path)
    : descriptor_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
    if (descriptor_ < 0) {
        urUtil::Error const error = urUtil::Error::fromSystem(errno, path);
        throw Failed{TransferError::fileUnreadable, CString(error.message())};
    }
    findSize();
}

UploadFile::~UploadFile() { close(descriptor_); }

/// The system reports size 0 for files whose content it generates on reading.
void UploadFile::findSize() {
    struct stat facts = {};
    if (fstat(descriptor_, &facts) != 0 || !S_ISREG(facts.st_mode)) return;
    char first = 0;
    bool const mayBeMadeUp = facts.st_size == 0;
    if (mayBeMadeUp && (!ready() || pread(descriptor_, &first, 1, 0) != 0)) return;
    size_ = facts.st_size;
}

bool UploadFile::ready() const noexcept {
    pollfd input{descriptor_, POLLIN, 0};
    return poll(&input, 1, 0) != 0;
}

CString UploadFile::errorText() const {
    if (failure_ == 0) return {};
    if (failure_ == shortened) return "the file is shorter than its size";
    return CString(urUtil::Error::fromSystem(failure_, "read").message());
}

std::size_t UploadFile::read(char* bytes, std::size_t size) noexcept {
    waits_ = !ready();
    if (waits_) return CURL_READFUNC_PAUSE;
    ssize_t const got = ::read(descriptor_, bytes, size);
    waits_ = got < 0 && (errno == EAGAIN || errno == EINTR);
    if (waits_) return CURL_READFUNC_PAUSE;
    if (got < 0) return abort(errno);
    if (got == 0 && size_ && position_ < *size_) return abort(shortened);
    position_ += got;
    return static_cast<std::size_t>(got);
}

std::size_t UploadFile::abort(int failure) noexcept {
    failure_ = failure;
    return CURL_READFUNC_ABORT;
}

bool UploadFile::seek(std::int64_t position) noexcept {
    if (lseek(descriptor_, position, SEEK_SET) < 0) return false;
    position_ = position;
    return true;
}

}  // namespace nxhost
