// A thread that runs what is connected to its signal.
#pragma once

#include <memory>
#include <thread>

#include "foundation/ur/Export.h"
#include "foundation/urRTB/Signal.h"
#include "foundation/urUtil/Error.h"

namespace urThread {

/// A thread of execution: `start` makes it, and it ends when every callback of its signal has returned.
///
/// The thread that owns the object starts it and waits for it; its destructor waits too. From `start` until `wait`
/// has returned, the signal and the connections to it belong to the running thread.
class NX_API Thread {
public:
    Thread() noexcept = default;
    Thread(Thread const&) = delete;
    Thread& operator=(Thread const&) = delete;
    /// Waits for the end of the run, unless it is a callback of the run that destroys the object.
    ~Thread();

    /// Emitted once by each run, on the new thread.
    [[nodiscard]] urRTB::Signal<>& getSignal() noexcept { return signal_; }

    /// Fails with EALREADY while a former run has not been waited for, or when the system has no thread to give.
    urUtil::Error start();
    /// Waits for the end of the run and tells how it ended: a failure with the code 0 and the exception's text when
    /// a callback threw. Success without a run. Fails at once, with EDEADLK, on the running thread itself.
    urUtil::Error wait();

private:
    struct Run;

    [[nodiscard]] bool isCurrent() const noexcept { return thread_.get_id() == std::this_thread::get_id(); }

    urRTB::Signal<> signal_;
    std::shared_ptr<Run> run_;  ///< the last run, held by its thread as well
    std::thread thread_;
};

}  // namespace urThread
