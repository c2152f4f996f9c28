// Measures elapsed time.
#pragma once

#include <chrono>

#include "foundation/ur/Export.h"

namespace urOS {

/// Adds up the time between its starts and stops, from zero. A value; one thread at a time.
class NX_API StopWatch {
public:
    /// No effect while running.
    void start() noexcept;
    /// Adds the time since the start. No effect while stopped.
    void stop() noexcept;
    /// Resets to zero; a running watch continues from there.
    void clear() noexcept;

    /// The seconds so far, including the current run.
    [[nodiscard]] double elapsed() const noexcept;
    [[nodiscard]] bool isRunning() const noexcept { return running_; }

private:
    using Clock = std::chrono::steady_clock;

    Clock::duration sum_{};
    Clock::time_point started_;
    bool running_ = false;
};

}  // namespace urOS
