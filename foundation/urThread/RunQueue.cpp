// Implements the queue and its lock.
#include "foundation/urThread/RunQueue.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace urThread {

namespace {

using Work = ur::Reference<Runnable>;
using Clock = std::chrono::steady_clock;

Clock::time_point after(std::chrono::nanoseconds limit) {
    auto const now = Clock::now();
    return limit < Clock::time_point::max() - now ? now + limit : Clock::time_point::max();
}

}  // namespace

// Shared with a running `service`, which continues when a runnable destroys the queue. Runnables are released outside
// the lock, since their destructors may add to the queue.
struct RunQueue::State {
    bool add(Work& work) {
        {
            std::lock_guard const lock(mutex);
            if (closed) return false;
            queued.push_back(std::move(work));
        }
        changed.notify_one();
        return true;
    }

    // Takes the oldest runnable if its number is below `end`; otherwise null.
    Work takeBefore(std::uint64_t end) {
        std::lock_guard const lock(mutex);
        return !closed && firstNumber < end ? takeFirst() : nullptr;
    }

    // Called by the servicing thread: returns the number of the next runnable to be added.
    std::uint64_t beginService() {
        std::lock_guard const lock(mutex);
        home = std::this_thread::get_id();
        return firstNumber + queued.size();
    }

    // Closes the queue. True on the servicing thread, which must drop the queued runnables.
    bool close() {
        std::lock_guard const lock(mutex);
        closed = true;
        return home == std::this_thread::get_id();
    }

    void dropIfClosed() noexcept {
        while (Work const dropped = takeClosed()) {
        }
    }

    Work takeClosed() noexcept {
        std::lock_guard const lock(mutex);
        return closed ? takeFirst() : nullptr;
    }

    Work takeFirst() noexcept {
        if (queued.empty()) return nullptr;
        Work work = std::move(queued.front());
        queued.pop_front();
        ++firstNumber;
        return work;
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Work> queued;
    std::uint64_t firstNumber = 0;  // number of the first in `queued`; the first one ever added has 0
    bool closed = false;            // nothing runs any more; queued runnables wait to be dropped
    std::thread::id home = std::this_thread::get_id();
};

RunQueue::RunQueue() : state_(std::make_shared<State>()) {}

RunQueue::~RunQueue() {
    close();
    state_->dropIfClosed();
}

void RunQueue::onAdd() {}

void RunQueue::add(ur::Reference<Runnable> runnable) {
    if (runnable && state_->add(runnable)) onAdd();
}

std::size_t RunQueue::service() {
    auto const state = state_;
    std::uint64_t const end = state->beginService();
    std::size_t count = 0;
    for (; Work const work = state->takeBefore(end); ++count) work->run();
    state->dropIfClosed();
    return count;
}

bool RunQueue::wait(std::chrono::nanoseconds limit) {
    auto const state = state_;
    std::unique_lock lock(state->mutex);
    state->home = std::this_thread::get_id();
    state->changed.wait_until(lock, after(limit), [&] { return state->closed || !state->queued.empty(); });
    bool const hasWork = !state->closed && !state->queued.empty();
    lock.unlock();
    state->dropIfClosed();
    return hasWork;
}

void RunQueue::close() noexcept {
    auto const state = state_;
    bool const atHome = state->close();
    state->changed.notify_all();
    if (atHome) state->dropIfClosed();
}

std::size_t RunQueue::size() const noexcept {
    std::lock_guard const lock(state_->mutex);
    return state_->closed ? 0 : state_->queued.size();
}

}  // namespace urThread
