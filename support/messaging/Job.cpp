// Reports to the queue of jobs.
#include "support/messaging/Job.h"

#include <utility>

#include "support/messaging/JobQueue.h"

namespace nxSupport {

Job::Job(JobQueue& queue, Domain& domain, urString::CString name, Work work, Done done)
    : AsyncTask(domain), queue_(&queue), name_(std::move(name)), work_(std::move(work)), done_(std::move(done)) {
    progressSignal().addCallback([this](double part, std::string_view text) {
        if (queue_) queue_->progressed.emit(*this, part, text);
    });
}

void Job::onComplete(bool) {
    if (queue_) queue_->end(*this);
}

void Job::onFailed(std::string_view text) {
    if (!queue_ || queue_->ended.connectionCount() == 0) AsyncTask::onFailed(text);
    if (queue_) queue_->end(*this);
}

}  // namespace nxSupport
