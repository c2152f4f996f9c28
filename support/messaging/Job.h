// A function that runs on a worker thread.
#pragma once

#include <functional>

#include "foundation/urString/CString.h"
#include "support/messaging/AsyncTask.h"

namespace nxSupport {

class JobQueue;

/// One piece of work of a `JobQueue`, which makes it. The work may call `setProgress` and `isCancelled`; everything
/// else belongs to the main thread.
class NX_API Job final : public AsyncTask {
public:
    /// Runs on the worker. It touches only what it owns or shares unchanged; what it throws fails the job.
    using Work = std::function<void(Job&)>;
    /// Runs on the main thread once the job has ended, also when it has failed or was cancelled.
    using Done = std::function<void(Job const&)>;

    [[nodiscard]] urString::CString const& name() const noexcept { return name_; }
    using AsyncTask::setProgress;

private:
    friend class JobQueue;
    Job(JobQueue& queue, Domain& domain, urString::CString name, Work work, Done done);

    void execute() override {
        setProgress(0);
        work_(*this);
    }
    void onComplete(bool waited) override;
    void onFailed(std::string_view text) override;

    JobQueue* queue_;  ///< null once it is destroyed
    urString::CString const name_;
    Work work_;
    Done done_;
};

}  // namespace nxSupport
