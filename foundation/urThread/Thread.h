// A thread that runs the callbacks of its signal.
#pragma once

#include <memory>
#include <thread>

#include "foundation/ur/Export.h"
#include "foundation/urRTB/Signal.h"
#include "foundation/urUtil/Error.h"

namespace urThread {

/// A thread of execution: `start` creates it, and it ends when every callback of its signal has returned.
///
/// The owning thread starts it and waits for it; the destructor waits too. From `start` until `wait` returns, the
/// signal and its connections belong to the running thread.
class NX_API Thread {
public:
    Thread() noexcept = default;
    Thread(Thread const&) = delete;
    Thread& operator=(Thread const&) = delete;
    /// Waits for the end of the run, unless a callback of the run destroys the object.
    ~Thread();

    /// Emitted once by each run, on the new thread.
    [[nodiscard]] urRTB::Signal<>& getSignal() noexcept { return signal_; }

    /// Fails with EALREADY while nobody has waited for the previous run, or when the system cannot create a thread.
    urUtil::Error start();
    /// Waits for the end of the run and returns its outcome: a failure with the code 0 and the exception's text if a
    /// callback threw. Success without a run. Fails at once, with EDEADLK, on the running thread itself.
    urUtil::Error wait();

private:
    struct Run;

    [[nodiscard]] bool isCurrent() const noexcept { return thread_.get_id() == std::this_thread::get_id(); }

    urRTB::Signal<> signal_;
    std::shared_ptr<Run> run_;  ///< the last run; its thread holds it too
    std::thread thread_;
};

}  // namespace urThread
