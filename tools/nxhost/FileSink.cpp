// Writes data to a file.
#include "tools/nxhost/FileSink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "tools/nxhost/throwIfFailed.h"

namespace nxhost {

FileSink::FileSink(urString::CString const& path, Transfers& transfers) : transfers_(transfers) {
    if (path.find('\0') != urString::CString::npos) throw nxRFL::Exception("the name of a file has no NULs");
    if (!openDevice(path)) throwIfFailed(file_.open(path, urOS::AtomicFile::Special::refused));
}

FileSink::~FileSink() = default;

/// Returns false for a regular file or a missing one. Opens the path before it checks it, so that the file cannot be
/// exchanged in between.
bool FileSink::openDevice(urString::CString const& path) {
    int const descriptor = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    // A running program cannot be opened for writing, but its file can be replaced.
    if (descriptor < 0 && errno != ENOENT && errno != ETXTBSY) throwIfFailed(urUtil::Error::fromSystem(errno, path));
    if (descriptor < 0) return false;
    struct stat facts = {};
    if (fstat(descriptor, &facts) != 0 || S_ISREG(facts.st_mode)) {
        ::close(descriptor);
        return false;
    }
    device_ = std::make_shared<PipeWriter>(descriptor, transfers_.options().stallLimit);
    return true;
}

void FileSink::onData(ur::Reference<urThread::Buffer> data) {
    if (closed()) throw nxRFL::Exception("the file has been closed");
    if (!device_) return throwIfFailed(file_.write(data->data(), data->size()));
    device_->write(data);
    if (device_->waits()) transfers_.waitFor(device_);
}

void FileSink::onClose() {
    if (closed()) return;
    if (device_ && completed()) {
        device_->finish();
    } else if (device_) {
        device_->abandon("the file has been closed");
    } else if (completed()) {
        throwIfFailed(file_.commit());
    }
}

}  // namespace nxhost
