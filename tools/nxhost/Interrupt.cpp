// The signal handler, and the state that the main loop reads.
#include "tools/nxhost/Interrupt.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <ctime>

#include "foundation/nxLC/State.h"

namespace nxhost {
namespace {

// The state that the signal handler may access.
std::atomic<nxLC::State*> watched = nullptr;
std::atomic<int> caught = 0;
std::atomic<std::int64_t> caughtAt = 0;  // in milliseconds
std::atomic<char const*> fileToRemove = nullptr;
std::atomic<char const*> folderToRemove = nullptr;
int pipeEnds[2] = {-1, -1};  // a byte in the pipe wakes threads that poll
static_assert(std::atomic<nxLC::State*>::is_always_lock_free && std::atomic<int>::is_always_lock_free &&
              std::atomic<std::int64_t>::is_always_lock_free);

constexpr std::int64_t repeatWindow = 1000;  // in milliseconds: further signals within this time are the same request

std::int64_t milliseconds() noexcept {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

void raiseDefault(int number) noexcept {
    if (char const* const file = fileToRemove) unlink(file);
    if (char const* const folder = folderToRemove) rmdir(folder);
    std::signal(number, SIG_DFL);
    raise(number);
}

extern "C" void onSignal(int number) {
    int const before = errno;
    std::int64_t const now = milliseconds();
    if (caught == 0) {
        caughtAt = now;  // set before `caught`: a thread that sees `caught` compares with this
    } else if (number != SIGPIPE && now - caughtAt >= repeatWindow) {
        raiseDefault(number);
    }
    caught = number;
    if (nxLC::State* const state = watched) state->interrupt();
    if (::write(pipeEnds[1], "!", 1) < 0) errno = 0;  // the pipe is full and thus already readable
    errno = before;
}

}  // namespace

Interrupt::Interrupt() {
    if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) pipeEnds[0] = pipeEnds[1] = -1;
    struct sigaction action = {};
    action.sa_handler = &onSignal;
    sigemptyset(&action.sa_mask);
    for (int const signal : signals) sigaddset(&action.sa_mask, signal);
    for (std::size_t i = 0; i < std::size(signals); ++i) sigaction(signals[i], &action, &before_[i]);
}

Interrupt::~Interrupt() {
    for (std::size_t i = 0; i < std::size(signals); ++i) sigaction(signals[i], &before_[i], nullptr);
    watched = nullptr;
    caught = 0;
    for (int& end : pipeEnds) {
        if (end >= 0) close(end);
        end = -1;
    }
}

void Interrupt::watch(nxLC::State* state) noexcept { watched = state; }

void Interrupt::removeWhenKilled(char const* file, char const* folder) noexcept {
    fileToRemove = file;
    folderToRemove = folder;
}

int Interrupt::pending() const noexcept { return caught; }

void Interrupt::clear() noexcept {
    if (caught != 0) std::clearerr(stdout);  // the next write repeats an interrupted one
    caught = 0;                              // before the reads: a signal in between is seen by the next call of
                                             // `pending`
    char bytes[16];
    while (::read(pipeEnds[0], bytes, sizeof bytes) > 0) continue;
}

int Interrupt::descriptor() const noexcept { return pipeEnds[0]; }

}  // namespace nxhost
