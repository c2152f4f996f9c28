// The queue behind its lock.
#include "foundation/urThread/RunQueue.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
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

// Shared with a running `service`, which goes on when a runnable destroys the queue. Runnables are dropped
// outside the lock, since their destructors may add to the queue.
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

    // The oldest runnable if it is older than the one numbered `end`, otherwise null.
    Work takeBefore(std::uint64_t end) {
        std::lock_guard const lock(mutex);
        if (queued.empty() || firstNumber >= end) return nullptr;
        Work work = std::move(queued.front());
        queued.pop_front();
        ++firstNumber;
        return work;
    }

    std::uint64_t nextNumber() {
        std::lock_guard const lock(mutex);
        return firstNumber + queued.size();
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::deque<Work> queued;
    std::uint64_t firstNumber = 0;  // of the first in `queued`; counted from the making of the queue
    bool closed = false;
};

RunQueue::RunQueue() : state_(std::make_shared<State>()) {}

RunQueue::~RunQueue() { close(); }

void RunQueue::onAdd() {}

void RunQueue::add(ur::Reference<Runnable> runnable) {
    if (runnable && state_->add(runnable)) onAdd();
}

std::size_t RunQueue::service() {
    auto const state = state_;
    std::uint64_t const end = state->nextNumber();
    std::size_t count = 0;
    for (; Work const work = state->takeBefore(end); ++count) work->run();
    return count;
}

bool RunQueue::wait(std::chrono::nanoseconds limit) {
    std::unique_lock lock(state_->mutex);
    state_->changed.wait_until(lock, after(limit), [this] { return state_->closed || !state_->queued.empty(); });
    return !state_->queued.empty();
}

void RunQueue::close() noexcept {
    std::deque<Work> dropped;
    {
        std::lock_guard const lock(state_->mutex);
        state_->closed = true;
        state_->firstNumber += state_->queued.size();
        dropped.swap(state_->queued);
    }
    state_->changed.notify_all();
}

std::size_t RunQueue::size() const noexcept {
    std::lock_guard const lock(state_->mutex);
    return state_->queued.size();
}

}  // namespace urThread
