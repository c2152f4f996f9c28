// Writes without waiting.
#include "tools/nxhost/PipeWriter.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "foundation/nxRFL/Exception.h"
#include "foundation/urUtil/Error.h"
#include "tools/nxhost/deadline.h"

namespace nxhost {
namespace {

using urString::CString;

constexpr std::size_t mostWaitingBytes = std::size_t(16) << 20U;

/// Like `write`, but a pipe without a reader gives only an error and no signal.
ssize_t writeQuietly(int descriptor, char const* bytes, std::size_t size) noexcept {
    sigset_t pipeSignal;
    sigset_t before;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
    ssize_t const written = ::write(descriptor, bytes, size);
    int const failure = errno;
    timespec const atOnce = {};
    if (written < 0 && failure == EPIPE) sigtimedwait(&pipeSignal, nullptr, &atOnce);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = failure;
    return written;
}

CString systemError(char const* about) { return CString(urUtil::Error::fromSystem(errno, about).message()); }

}  // namespace

void PipeWriter::write(ur::Reference<urThread::Buffer> const& data) {
    throwError();
    if (data->size() == 0) return;
    if (waits() && bytes_ + data->size() > mostWaitingBytes)
        throw nxRFL::Exception("too much waits for the reader of the pipe");
    if (!waits()) lastProgress_ = Clock::now();
    waiting_.push_back(data);
    bytes_ += data->size();
    flush();
    throwError();
}

void PipeWriter::finish() {
    throwError();
    finishing_ = true;
    if (!waits()) close();
    throwError();
}

void PipeWriter::abandon(char const* reason) {
    if (error_.empty()) error_ = reason;
    waiting_.clear();
    written_ = bytes_ = 0;
    close();
}

bool PipeWriter::advance() {
    if (!waits()) return true;
    flush();
    if (waits() && Clock::now() >= deadline()) abandon("nobody reads what is written");
    if (!waits() && finishing_) close();
    return error_.empty();
}

PipeWriter::Clock::time_point PipeWriter::deadline() const noexcept {
    return deadlineAfter(lastProgress_, stallLimit_);
}

void PipeWriter::flush() {
    while (waits()) {
        urThread::Buffer const& first = *waiting_.front();
        ssize_t const written = writeQuietly(descriptor_, first.data() + written_, first.size() - written_);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno != EAGAIN) return abandon(systemError("write").c_str());
        if (written <= 0) return;
        lastProgress_ = Clock::now();
        bytes_ -= static_cast<std::size_t>(written);
        written_ += static_cast<std::size_t>(written);
        if (written_ < first.size()) continue;
        waiting_.pop_front();
        written_ = 0;
    }
}

void PipeWriter::throwError() const {
    if (!error_.empty()) throw nxRFL::Exception(error_);
}

void PipeWriter::close() {
    int const descriptor = std::exchange(descriptor_, -1);
    if (descriptor >= 0 && ::close(descriptor) != 0 && error_.empty()) error_ = systemError("close");
}

}  // namespace nxhost
