// Starts, cancels and ends jobs.
#include "support/messaging/JobQueue.h"

#include <utility>

namespace nxSupport {

JobQueue::~JobQueue() {
    *isAlive_ = false;
    for (auto const& job : running_) {
        job->queue_ = nullptr;
        job->cancel();
    }
    for (auto const& job : running_) job->wait();
}

void JobQueue::add(urString::CString name, Job::Work work, Job::Done done) {
    waiting_.push_back({std::move(name), std::move(work), std::move(done)});
    startNext();
}

ur::Reference<Job> JobQueue::make(Waiting waiting) {
    return ur::Reference<Job>(
        new Job(*this, domain_, std::move(waiting.name), std::move(waiting.work), std::move(waiting.done)));
}

void JobQueue::startNext() {
    while (running_.size() < mostRunning_ && !waiting_.empty()) {
        running_.push_back(make(std::move(waiting_.front())));
        waiting_.pop_front();
        running_.back()->startThread();
    }
}

void JobQueue::cancelAll() {
    urOS::FirstError errors;
    for (auto const& job : running_) job->cancel();
    for (Waiting& waiting : std::exchange(waiting_, {})) {
        auto const job = make(std::move(waiting));
        job->cancel();
        if (!report(*job, errors)) break;
    }
    errors.rethrow();
}

bool JobQueue::report(Job& job, urOS::FirstError& errors) {
    auto const isAlive = isAlive_;
    if (Job::Done const done = std::exchange(job.done_, {})) errors.guard([&] { done(job); });
    if (*isAlive) errors.guard([&] { ended.emit(job); });
    return *isAlive;
}

void JobQueue::end(Job& job) {
    ur::Reference<Job> const held(&job);
    std::erase(running_, held);
    urOS::FirstError errors;
    if (report(job, errors)) errors.guard([&] { startNext(); });
    errors.rethrow();
}

}  // namespace nxSupport
