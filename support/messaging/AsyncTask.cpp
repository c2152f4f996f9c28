// Runs a task on a worker and completes it on the main thread.
#include "support/messaging/AsyncTask.h"

#include <atomic>
#include <exception>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/Reference.h"
#include "foundation/ur/TypeInfo.h"
#include "foundation/urOS/AppOutput.h"
#include "foundation/urThread/RunQueue.h"
#include "foundation/urThread/Runnable.h"
#include "foundation/urThread/Thread.h"
#include "foundation/urUtil/Error.h"
#include "support/messaging/Domain.h"
#include "support/messaging/impl/DomainImpl.h"

namespace nxSupport {

/// Completes or fails a task from the run queue. Owns the reference that `startThread` took.
class CompletionTask final : public urThread::Runnable {
public:
    explicit CompletionTask(AsyncTask& task) noexcept : task_(&task) {}
    CompletionTask(CompletionTask const&) = delete;
    CompletionTask& operator=(CompletionTask const&) = delete;

    void run() override;
    void setFailed() noexcept { failed_ = true; }
    /// Releases the task, because `wait` has already reported the failure.
    void reset() noexcept { task_ = nullptr; }

private:
    ~CompletionTask() override {
        if (task_) task_->abandon();
    }

    AsyncTask* task_;
    bool failed_ = false;
};

/// The worker's last progress, passed to the main thread.
struct TaskProgress {
    explicit TaskProgress(AsyncTask::ProgressSignal& progressSignal) : signal(&progressSignal) {}

    /// Returns whether no earlier progress was still in the queue.
    bool set(double newFraction, std::string_view newText) {
        std::lock_guard const lock(mutex);
        fraction = newFraction;
        text = newText;
        return !std::exchange(queued, true);
    }
    void emit() {
        std::unique_lock lock(mutex);
        queued = false;
        std::string const current = text;
        double const done = fraction;
        lock.unlock();
        if (signal) signal->emit(done, current);
    }

    AsyncTask::ProgressSignal* signal;  // used by the main thread only; null once no more progress is reported
    std::mutex mutex;
    double fraction = 0;
    std::string text;
    bool queued = false;
};

struct TaskImpl final : ur::ImplBase {
    explicit TaskImpl(Domain& owner) : domain(&owner) {}

    Domain* domain;  ///< null once it is destroyed
    urRTB::ScopedConnection domainWatch;
    urThread::Thread thread;
    /// Set by `startThread`; moved to the queue at the end of the work.
    ur::Reference<CompletionTask> completion;
    CompletionTask* failing = nullptr;  ///< the completion in the queue, if the work threw
    urThread::RunQueue* queue = nullptr;
    std::thread::id home;  ///< the thread that started the task; only this thread may change the reference count
    bool started = false;
    urUtil::Error failure;  ///< the error that the thread has reported so far
    AsyncTask::ProgressSignal progressSignal;
    std::shared_ptr<TaskProgress> progress = std::make_shared<TaskProgress>(progressSignal);
    std::atomic<bool> cancelled = false;
    std::atomic<bool> waited = false;
    std::atomic<bool> abandoned = false;  ///< another thread than `home` dropped the completion; the code that clears
                                          ///< this releases the task
};

AsyncTask::AsyncTask(Domain& domain) : impl_(std::make_unique<TaskImpl>(domain)) {
    impl_->thread.getSignal().addCallback(client_, this, &AsyncTask::threadFunc);
    impl_->domainWatch = domain.destroying.addCallback([this](Domain*) {
        impl_->domain = nullptr;
        if (impl_->abandoned.exchange(false)) release();
    });
    domain.setAsyncTask(this);
}

AsyncTask::~AsyncTask() {
    impl_->progress->signal = nullptr;
    leaveDomain();
    impl_.reset();  // before the client, which the thread may use until it has ended
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
    if (!failed()) return;
    leaveDomain();
    queueFailure();
}

/// The task may be destroyed afterwards, unless this is its worker.
void AsyncTask::queueFailure() {
    impl_->failing = impl_->completion.get();
    impl_->failing->setFailed();
    impl_->queue->add(std::move(impl_->completion));
}

void AsyncTask::threadFunc() {
    try {
        execute();
    } catch (...) {
        queueFailure();
        throw;  // the thread keeps the exception
    }
    impl_->queue->add(std::move(impl_->completion));  // from here on the main thread may destroy the task
}

void CompletionTask::run() {
    AsyncTask* const task = std::exchange(task_, nullptr);
    if (!task) return;
    failed_ ? task->fail() : task->complete(task->impl_->waited);
}

void AsyncTask::complete(bool waited) {
    auto const started = ur::Reference<AsyncTask>::adopt(this);
    static_cast<void>(impl_->thread.wait());  // the worker may still be inside the queue, which `onComplete` may
                                              // destroy
    impl_->progress->signal = nullptr;
    if (impl_->domain) impl_->domain->setAsyncTask(nullptr);
    onComplete(waited);
}

void AsyncTask::fail() {
    auto const started = ur::Reference<AsyncTask>::adopt(this);
    impl_->failing = nullptr;
    if (urUtil::Error const outcome = impl_->thread.wait(); outcome.isError()) impl_->failure = outcome;
    impl_->progress->signal = nullptr;
    leaveDomain();
    onFailed(failureText());
}

void AsyncTask::onFailed(std::string_view text) { printFailure(text); }

void AsyncTask::printFailure(std::string_view text) const {
    urOS::AppOutput::getInstance().print("%s has failed: %.*s\n", ur::TypeInfo::of(*this).readableName().c_str(),
                                         static_cast<int>(text.size()), text.data());
}

void AsyncTask::abandon() noexcept {
    impl_->failing = nullptr;
    if (std::this_thread::get_id() == impl_->home) {
        release();
    } else {
        impl_->abandoned = true;
    }
}

/// Ends a task whose completion was dropped. What `onFailed` uses may be gone, so a failure is printed.
void AsyncTask::release() noexcept {
    auto const started = ur::Reference<AsyncTask>::adopt(this);
    if (urUtil::Error const outcome = impl_->thread.wait(); outcome.isError()) impl_->failure = outcome;
    leaveDomain();
    try {
        if (failed()) printFailure(failureText());
    } catch (...) {  // the output itself fails
    }
}

/// Unsets the domain's task, because a domain must not wait for a task that will not complete.
void AsyncTask::leaveDomain() noexcept {
    if (impl_->domain && impl_->domain->impl_->asyncTask == this) impl_->domain->setAsyncTask(nullptr);
}

void AsyncTask::wait() {
    impl_->waited = true;
    urUtil::Error const outcome = impl_->thread.wait();
    if (outcome.isError()) impl_->failure = outcome;
    if (impl_->failing) {
        impl_->failing->reset();
        return fail();
    }
    if (!impl_->abandoned.exchange(false)) return;
    if (outcome.isError()) return fail();
    release();
}

void AsyncTask::cancel() noexcept { impl_->cancelled = true; }
bool AsyncTask::isCancelled() const noexcept { return impl_->cancelled; }
AsyncTask::ProgressSignal& AsyncTask::progressSignal() noexcept { return impl_->progressSignal; }

void AsyncTask::setProgress(double fraction, std::string_view text) {
    auto const& progress = impl_->progress;
    if (progress->set(fraction, text)) impl_->queue->add([progress] { progress->emit(); });
}

bool AsyncTask::failed() const noexcept { return impl_->failure.isError(); }

std::string_view AsyncTask::failureText() const noexcept { return impl_->failure.message(); }

}  // namespace nxSupport
