// Prints the progress line.
#include "tools/nxplist/Progress.h"

#include <unistd.h>

#include <cstdio>

namespace nxplist {
namespace {

constexpr std::uint64_t mebibyte = 1 << 20;
constexpr std::uint64_t longJob = 16 * mebibyte;

}  // namespace

Progress::Progress(char const* work) : work_(work), terminal_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::show(std::uint64_t done, std::uint64_t total) {
    bool const isLong = done > longJob || total > longJob;
    if (!terminal_ || !isLong || (shown_ && done < lastShown_ + mebibyte)) return;
    shown_ = true;
    lastShown_ = done;
    if (total > 0) {
        std::fprintf(stderr, "\r%s %llu of %llu MiB\033[K", work_, static_cast<unsigned long long>(done / mebibyte),
                     static_cast<unsigned long long>(total / mebibyte));
    } else {
        std::fprintf(stderr, "\r%s %llu MiB\033[K", work_, static_cast<unsigned long long>(done / mebibyte));
    }
}

}  // namespace nxplist
