// Asks Windows.
#include <windows.h>

#include "foundation/nxLC/impl/processorTime.h"

namespace nxLC::impl {

std::chrono::nanoseconds processorTime() noexcept {
    FILETIME unused = {};
    FILETIME kernel = {};
    FILETIME user = {};
    GetThreadTimes(GetCurrentThread(), &unused, &unused, &kernel, &user);
    auto const ticks = [](FILETIME const& time) {
        return (static_cast<long long>(time.dwHighDateTime) << 32U) + time.dwLowDateTime;
    };
    return std::chrono::nanoseconds(100 * (ticks(kernel) + ticks(user)));
}

}  // namespace nxLC::impl
