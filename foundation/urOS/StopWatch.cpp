// Implements the stopwatch.
#include "foundation/urOS/StopWatch.h"

namespace urOS {

void StopWatch::start() noexcept {
    if (running_) return;
    started_ = Clock::now();
    running_ = true;
}

void StopWatch::stop() noexcept {
    if (!running_) return;
    sum_ += Clock::now() - started_;
    running_ = false;
}

void StopWatch::clear() noexcept {
    sum_ = {};
    started_ = Clock::now();
}

double StopWatch::elapsed() const noexcept {
    Clock::duration const current = running_ ? Clock::now() - started_ : Clock::duration();
    return std::chrono::duration<double>(sum_ + current).count();
}

}  // namespace urOS
