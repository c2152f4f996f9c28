// Data into a file.
#include "tools/nxhost/FileSink.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "foundation/nxRFL/Exception.h"

namespace nxhost {
namespace {

constexpr int stallMilliseconds = 60'000;

void check(urUtil::Error const& error) {
    if (error.isError()) throw nxRFL::Exception(urString::CString(error.message()));
}

bool isDevice(char const* path) noexcept {
    struct stat facts = {};
    return stat(path, &facts) == 0 && !S_ISREG(facts.st_mode) && !S_ISDIR(facts.st_mode);
}

/// As write, but a pipe that nobody reads any more is an error only, and no signal.
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

}  // namespace

FileSink::FileSink(urString::CString const& path, Interrupt const& interrupt) : interrupt_(interrupt) {
    if (path.find('\0') != urString::CString::npos) throw nxRFL::Exception("the name of a file has no NULs");
    if (isDevice(path.c_str())) {
        device_ = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (device_ < 0) check(urUtil::Error::fromSystem(errno, path));
    } else {
        check(file_.open(urString::IString(path.c_str())));
    }
}

FileSink::~FileSink() { closeDevice(); }

void FileSink::onData(ur::Reference<urThread::Buffer> data) {
    if (closed()) throw nxRFL::Exception("the file has been closed");
    if (device_ >= 0) return writeDevice(data->data(), data->size());
    check(file_.write(data->data(), data->size()));
}

void FileSink::onClose() {
    if (!closed() && completed() && device_ < 0) check(file_.commit());
    closeDevice();
}

void FileSink::writeDevice(char const* bytes, std::size_t size) const {
    for (std::size_t done = 0; done < size;) {
        ssize_t const written = writeQuietly(device_, bytes + done, size - done);
        if (written >= 0) {
            done += static_cast<std::size_t>(written);
        } else if (errno == EAGAIN) {
            waitForDevice();
        } else if (errno != EINTR) {
            check(urUtil::Error::fromSystem(errno, "write"));
        }
    }
}

void FileSink::waitForDevice() const {
    pollfd either[] = {{device_, POLLOUT, 0}, {interrupt_.descriptor(), POLLIN, 0}};
    int const ready = poll(either, std::size(either), stallMilliseconds);
    if (interrupt_.pending() != 0) throw nxRFL::Exception("interrupted");
    if (ready == 0) throw nxRFL::Exception("nobody reads what is written");
}

void FileSink::closeDevice() noexcept {
    if (int const device = std::exchange(device_, -1); device >= 0) ::close(device);
}

}  // namespace nxhost
