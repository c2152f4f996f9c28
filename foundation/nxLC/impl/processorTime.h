// The processor's time of a thread.
#pragma once

#include <chrono>

namespace nxLC::impl {

/// The processor's time that the current thread has used since some moment in the past. Takes about 200 ns.
[[nodiscard]] std::chrono::nanoseconds processorTime() noexcept;

}  // namespace nxLC::impl
