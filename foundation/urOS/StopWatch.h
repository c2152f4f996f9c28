// Measures elapsed time.
#pragma once

#include <chrono>

#include "foundation/ur/Export.h"

namespace urOS {

/// Adds up the time between its starts and stops. New watches stand at zero. A value; one thread at a time.
class NX_API StopWatch {
public:
    /// A watch that runs already runs on.
    void start() noexcept;
    /// Adds the time since the start; a watch that stands stays as it is.
    void stop() noexcept;
    /// Back to zero; a watch that runs begins anew.
    void clear() noexcept;

    /// Seconds so far, the current run included.
    [[nodiscard]] double elapsed() const noexcept;
    [[nodiscard]] bool isRunning() const noexcept { return running_; }

private:
    using Clock = std::chrono::steady_clock;

    Clock::duration sum_{};
    Clock::time_point started_;
    bool running_ = false;
};

}  // namespace urOS
