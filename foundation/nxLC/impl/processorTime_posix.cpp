// Asks POSIX.
#include <ctime>

#include "foundation/nxLC/impl/processorTime.h"

namespace nxLC::impl {

std::chrono::nanoseconds processorTime() noexcept {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace nxLC::impl
