// Runs functions on worker threads, a few at a time.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>

#include "foundation/urOS/FirstError.h"
#include "support/messaging/Job.h"

namespace nxSupport {

/// Starts jobs in the order in which they were added, with a limit for those that run at once.
///
///     auto const mesh = std::make_shared<Mesh>();
///     jobs.add("Reading", [mesh](Job& job) { *mesh = read(file, job); }, [=](Job const& job) {
///         if (!job.failed()) show(*mesh);
///     });
///
/// Belongs to the main thread, which services the run queue of the domain; both outlive it. Functions and listeners may
/// add and cancel jobs, throw, and destroy the queue.
class NX_API JobQueue {
public:
    explicit JobQueue(Domain& domain, std::size_t mostRunning = 2) : domain_(domain), mostRunning_(mostRunning) {}
    JobQueue(JobQueue const&) = delete;
    JobQueue& operator=(JobQueue const&) = delete;
    /// Cancels all jobs and waits for the work of those that run. Their `done` is not called.
    ~JobQueue();

    /// `name` is for people. `done` may be empty.
    void add(urString::CString name, Job::Work work, Job::Done done = {});
    /// Asks running jobs to end early, and ends the waiting ones, whose work does not run.
    void cancelAll();
    [[nodiscard]] bool isBusy() const noexcept { return !running_.empty() || !waiting_.empty(); }

    /// A job has started or reported progress: the fraction that is done, and a text.
    urRTB::Signal<Job const&, double, std::string_view> progressed;
    /// A job has ended and its `done` has been called. Without a listener, failures are printed.
    urRTB::Signal<Job const&> ended;

private:
    friend class Job;

    struct Waiting {
        urString::CString name;
        Job::Work work;
        Job::Done done;
    };
    [[nodiscard]] ur::Reference<Job> make(Waiting waiting);
    void startNext();
    /// False if a function or listener has destroyed the queue.
    bool report(Job& job, urOS::FirstError& errors);
    void end(Job& job);

    Domain& domain_;
    std::size_t const mostRunning_;
    std::deque<Waiting> waiting_;
    ur::vector<ur::Reference<Job>> running_;
    std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
};

}  // namespace nxSupport
