// Work on a thread of its own, completed on the main thread.
#pragma once

#include <memory>
#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/urRTB/Signal.h"
#include "foundation/urRTB/SignalClient.h"

namespace nxSupport {

class CompletionTask;
class Domain;
struct TaskImpl;

/// Runs `execute` once on a worker thread, then `onComplete` from the run queue of its domain.
///
/// Held by reference: the owner keeps one while it needs the task, and a started task lives by itself until it has
/// completed. The count is plain, so `execute` must leave references to the task alone, as it must leave alone the
/// domain and all else that it does not own; `isCancelled` and `setProgress` are for it. An exception from it ends the
/// work, not the process, and the task never completes: the domain forgets it, and `onFailed` is told instead, from the
/// run queue or from a `wait`. When the queue drops the completion unrun, `onComplete` is not called, but the
/// task is freed: at once when the main thread drops it from a closed queue. A task whose queue had closed before its
/// work ended is freed by a `wait`, or when its domain goes after the end of the work. A host that closes the queue and
/// destroys the domain while tasks work keeps references to them, and waits. All else belongs to the main thread, which
/// services the queue.
class NX_API AsyncTask : public ur::ReferenceCount {
public:
    /// The domain reports this task from now on, in place of any other, until it has completed.
    explicit AsyncTask(Domain& domain);
    AsyncTask(AsyncTask const&) = delete;
    AsyncTask& operator=(AsyncTask const&) = delete;
    ~AsyncTask() override;

    /// Starts the work. Only the first call does. When the system has no thread to give, the task has failed.
    void startThread();
    /// Waits for the end of the work, and has `onComplete` told so if it still is to run. Of work that threw it tells
    /// `onFailed`; the task may then be gone.
    void wait();

    /// Whether there was no thread, or the work threw, from when `onFailed` is told.
    [[nodiscard]] bool failed() const noexcept;
    /// What the system or the exception said; empty unless `failed`.
    [[nodiscard]] std::string_view failureText() const noexcept;

    /// Asks the work to end early. It completes as ever.
    void cancel() noexcept;
    /// Any thread.
    [[nodiscard]] bool isCancelled() const noexcept;
    using ProgressSignal = urRTB::Signal<double, std::string_view>;
    /// Emitted from the run queue with what `setProgress` told last, and not after the task has completed or failed.
    [[nodiscard]] ProgressSignal& progressSignal() noexcept;

protected:
    /// The worker: how much is done, from 0 to 1, and what is being done. Of what is told faster than the queue is
    /// serviced, the last stays.
    void setProgress(double fraction, std::string_view text = {});
    /// The work, on the worker thread.
    virtual void execute() = 0;
    /// The work is done; `waited` tells that someone has waited for it. What it throws leaves the queue's service.
    virtual void onComplete(bool waited) = 0;
    /// The work threw, as `text` says, or there was no thread for it. From the run queue, or from a `wait` before;
    /// not when the queue drops the task.
    virtual void onFailed(std::string_view text);

private:
    friend class CompletionTask;

    void threadFunc();
    void complete(bool waited);
    void queueFailure();
    void fail();
    void abandon() noexcept;
    void leaveDomain() noexcept;

    urRTB::SignalClient client_;  ///< of the thread's signal
    std::unique_ptr<TaskImpl> impl_;
};

}  // namespace nxSupport
