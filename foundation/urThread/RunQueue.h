// Work that other threads hand to the thread that services the queue.
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

/// Collects runnables from any thread and runs them, in the order of adding, on the thread that services it.
///
/// The host owns it and calls `service` in its loop; a host without a loop calls `wait` and then `service`, one
/// with its own event loop overrides `onAdd` to post itself that call. It outlives the threads that add to it.
/// What is still queued when it closes or goes is dropped, not run, since what it would work on may be gone. Runnables
/// may hold what belongs to the thread that services the queue, so that thread drops them: the one that last called
/// `service` or `wait`, or else made the queue.
class NX_API RunQueue {
public:
    RunQueue();
    RunQueue(RunQueue const&) = delete;
    RunQueue& operator=(RunQueue const&) = delete;
    /// Closes the queue. A runnable may destroy the queue that runs it.
    virtual ~RunQueue();

    /// Any thread. Ignored when null; dropped when the queue has closed.
    void add(ur::Reference<Runnable> runnable);
    /// The same for any callable, which is kept by value: `queue.add([=] { show(result); })`.
    template <class F>
    requires(!std::convertible_to<F, ur::Reference<Runnable>>) void add(F&& work) {
        static_assert(std::invocable<std::decay_t<F>&>, "what a run queue runs is called without arguments");
        add(ur::Reference<Runnable>(ur::make<impl::Call<std::decay_t<F>>>(std::forward<F>(work))));
    }

    /// Runs what is queued now and tells how many that were; what is added meanwhile waits for the next call.
    /// An exception from a runnable leaves at once; those after it stay queued in their order.
    /// A runnable may service the queue itself: each one still runs once.
    std::size_t service();
    /// Waits for something to run, `limit` at most. False when there was nothing, at once when the queue has closed.
    bool wait(std::chrono::nanoseconds limit);
    /// Any thread. Nothing that is queued or added later runs any more; ends a `wait`. What is queued is dropped at
    /// once on the servicing thread, otherwise by its next `service` or `wait`; what is added later, by the adding
    /// thread.
    void close() noexcept;
    /// Any thread: the number of runnables queued at some moment of the call.
    [[nodiscard]] std::size_t size() const noexcept;

protected:
    /// Called after each addition, on the adding thread.
    virtual void onAdd();

private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace urThread
