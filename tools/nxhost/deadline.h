// Ends of limits in seconds.
#pragma once

#include <algorithm>
#include <chrono>

namespace nxhost {

/// The largest limit in seconds; larger ones mean the same.
inline constexpr double mostSeconds = 1e6;

/// `seconds` after `start`; never, if they are 0.
[[nodiscard]] inline std::chrono::steady_clock::time_point deadlineAfter(std::chrono::steady_clock::time_point start,
                                                                         double seconds) noexcept {
    using Clock = std::chrono::steady_clock;
    if (seconds <= 0) return Clock::time_point::max();
    std::chrono::duration<double> const limit(std::min(seconds, mostSeconds));
    return start + std::chrono::duration_cast<Clock::duration>(limit);
}

}  // namespace nxhost
