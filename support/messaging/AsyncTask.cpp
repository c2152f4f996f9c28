// The way of a task from the main thread to the worker and back.
#include "support/messaging/AsyncTask.h"

#include <atomic>
#include <exception>
#include <thread>
#include <utility>

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/Reference.h"
#include "foundation/urThread/RunQueue.h"
#include "foundation/urThread/Runnable.h"
#include "foundation/urThread/Thread.h"
#include "foundation/urUtil/Error.h"
#include "support/messaging/Domain.h"
#include "support/messaging/impl/DomainImpl.h"

namespace nxSupport {

/// The end of a task on its way through the run queue. Owns the count that `startThread` added to the task.
class CompletionTask final : public urThread::Runnable {
public:
    explicit CompletionTask(AsyncTask& task) noexcept : task_(&task) {}
    CompletionTask(CompletionTask const&) = delete;
    CompletionTask& operator=(CompletionTask const&) = delete;

    void run() override;

private:
    ~CompletionTask() override {
        if (task_) task_->abandon();
    }

    AsyncTask* task_;
};

struct TaskImpl final : ur::ImplBase {
    explicit TaskImpl(Domain& owner) : domain(&owner) {}

    Domain* domain;  ///< null once it has gone
    urRTB::ScopedConnection domainWatch;
    urThread::Thread thread;
    /// Between `startThread` and the end of the work, which hands it to the queue.
    ur::Reference<CompletionTask> completion;
    urThread::RunQueue* queue = nullptr;
    std::thread::id home;  ///< the thread that started the task; the count is its own
    bool started = false;
    urUtil::Error failure;  ///< as far as the thread has told it
    std::atomic<bool> waited = false;
    std::atomic<bool> abandoned = false;  ///< elsewhere than at home: the count is still to drop, by who clears this
};

AsyncTask::AsyncTask(Domain& domain) : impl_(std::make_unique<TaskImpl>(domain)) {
    impl_->thread.getSignal().addCallback(client_, this, &AsyncTask::threadFunc);
    impl_->domainWatch = domain.destroying.addCallback([this](Domain*) {
        impl_->domain = nullptr;
        if (impl_->abandoned.exchange(false)) unref();
    });
    domain.setAsyncTask(this);
}

AsyncTask::~AsyncTask() {
    leaveDomain();
    impl_.reset();  // before the client, which belongs to the thread until that has ended
}

void AsyncTask::startThread() {
    if (impl_->started || !impl_->domain) return;
    impl_->queue = &impl_->domain->runQueue();
    impl_->completion = ur::make<CompletionTask>(*this);
    impl_->home = std::this_thread::get_id();
    impl_->started = true;
    ref();
    try {
        impl_->failure = impl_->thread.start();
    } catch (std::exception const& exception) {
        impl_->failure = {0, exception.what()};
    }
    if (failed()) impl_->completion.reset();  // the task may be gone
}

void AsyncTask::threadFunc() {
    try {
        execute();
    } catch (...) {
        impl_->completion.reset();  // unrun, so that the count waits for `wait`
        throw;
    }
    impl_->queue->add(std::move(impl_->completion));  // from here on the main thread may destroy the task
}

void CompletionTask::run() {
    if (AsyncTask* const task = std::exchange(task_, nullptr)) task->complete(task->impl_->waited);
}

void AsyncTask::complete(bool waited) {
    auto const started = ur::Reference<AsyncTask>::adopt(this);
    static_cast<void>(impl_->thread.wait());  // it may still be inside the queue, which `onComplete` may destroy
    if (impl_->domain) impl_->domain->setAsyncTask(nullptr);
    onComplete(waited);
}

void AsyncTask::abandon() noexcept {
    if (std::this_thread::get_id() == impl_->home) {
        leaveDomain();
        unref();
    } else {
        impl_->abandoned = true;
    }
}

/// A domain that waits for its task until there is none must not wait for one that will not complete.
void AsyncTask::leaveDomain() noexcept {
    if (impl_->domain && impl_->domain->impl_->asyncTask == this) impl_->domain->setAsyncTask(nullptr);
}

void AsyncTask::wait() {
    impl_->waited = true;
    urUtil::Error const outcome = impl_->thread.wait();
    if (!impl_->abandoned.exchange(false)) return;
    impl_->failure = outcome;
    leaveDomain();
    unref();
}

bool AsyncTask::failed() const noexcept { return impl_->failure.isError(); }

std::string_view AsyncTask::failureText() const noexcept { return impl_->failure.message(); }

}  // namespace nxSupport
