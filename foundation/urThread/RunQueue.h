// Runs work from other threads on the thread that services the queue.
#pragma once

#include <chrono>
#include <concepts>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/ur/Reference.h"
#include "foundation/urThread/Runnable.h"

namespace urThread {

namespace impl {

template <class F>
class Call final : public Runnable {
public:
    explicit Call(F work) : work_(std::move(work)) {}
    void run() override { static_cast<void>(work_()); }

private:
    F work_;
};

}  // namespace impl

/// Collects runnables from any thread and runs them on the servicing thread, in the order in which they were added.
///
/// The host owns it and calls `service` in its loop; a host without a loop calls `wait` and then `service`; a host with
/// its own event loop overrides `onAdd` to post itself that call. The queue outlives the threads that add to it.
/// Closing or destroying it drops queued runnables without running them, since the objects that they use may be gone.
/// Runnables may hold objects of the servicing thread, so that thread drops them: the one that last called `service` or
/// `wait`, otherwise the one that created the queue.
class NX_API RunQueue {
public:
    RunQueue();
    RunQueue(RunQueue const&) = delete;
    RunQueue& operator=(RunQueue const&) = delete;
    /// Closes the queue. A runnable may destroy the queue that runs it.
    virtual ~RunQueue();

    /// Any thread. Ignores null; drops the runnable when the queue is closed.
    void add(ur::Reference<Runnable> runnable);
    /// The same for any callable, which is stored by value: `queue.add([=] { show(result); })`.
    template <class F>
    requires(!std::convertible_to<F, ur::Reference<Runnable>>) void add(F&& work) {
        static_assert(std::invocable<std::decay_t<F>&>, "what a run queue runs is called without arguments");
        add(ur::Reference<Runnable>(ur::make<impl::Call<std::decay_t<F>>>(std::forward<F>(work))));
    }

    /// Runs the runnables queued now and returns their number; later ones wait for the next call. An exception from a
    /// runnable passes to the caller at once; those after it stay queued in their order. A runnable may service the
    /// queue itself: each one still runs once.
    std::size_t service();
    /// Waits at most `limit` for a runnable. False when there is none, at once when the queue is closed.
    bool wait(std::chrono::nanoseconds limit);
    /// Any thread. No queued or later runnable runs any more; ends a `wait`. Queued runnables are dropped at once on
    /// the servicing thread, otherwise by its next `service` or `wait`; later ones are dropped by the adding thread.
    void close() noexcept;
    /// Any thread: the number of queued runnables at some moment during the call.
    [[nodiscard]] std::size_t size() const noexcept;

protected:
    /// Called after each addition, on the adding thread.
    virtual void onAdd();

private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace urThread
