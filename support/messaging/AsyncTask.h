// Runs work on a worker thread and completes it on the main thread.
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
/// Held by reference: the owner keeps a reference while it needs the task, and a started task keeps itself alive until
/// it has completed. The reference count is not atomic, so `execute` must not touch references to the task. It must
/// also not touch the domain or anything else that it does not own; it may call `isCancelled` and `setProgress`. If
/// `execute` throws, the work ends but not the process, and the task never completes: the domain forgets it, and
/// `onFailed` is called instead, from the run queue or from `wait`.
///
/// If the queue drops the completion without running it, `onComplete` is not called, and the text of a failure is
/// printed. The task is freed at once if the main thread drops it from a closed queue. If the queue was closed before
/// the work ended, the task is freed by `wait`, which calls `onFailed` after a failure, or when its domain is destroyed
/// after the end of the work. A host that closes the queue and destroys the
/// domain while tasks run keeps references to them and calls `wait`. Everything else belongs to the main thread, which
/// services the queue.
class NX_API AsyncTask : public ur::ReferenceCount {
public:
    /// Until it has completed, the task is the one that the domain waits for, in place of any other.
    explicit AsyncTask(Domain& domain);
    AsyncTask(AsyncTask const&) = delete;
    AsyncTask& operator=(AsyncTask const&) = delete;
    ~AsyncTask() override;

    /// Starts the work; later calls do nothing. If the system cannot create a thread, the task has failed.
    void startThread();
    /// Waits for the end of the work. If `onComplete` still has to run, it gets `waited` as true. If the work threw,
    /// this calls `onFailed`; the task may then be destroyed.
    void wait();

    /// True if no thread could be created, or if the work threw and that has been reported.
    [[nodiscard]] bool failed() const noexcept;
    /// The message of the system or of the exception; empty unless `failed`.
    [[nodiscard]] std::string_view failureText() const noexcept;

    /// Asks the work to end early. It completes as usual.
    void cancel() noexcept;
    /// May be called from any thread.
    [[nodiscard]] bool isCancelled() const noexcept;
    using ProgressSignal = urRTB::Signal<double, std::string_view>;
    /// Emitted from the run queue with the last values of `setProgress`; never after the task has completed or failed.
    [[nodiscard]] ProgressSignal& progressSignal() noexcept;

protected:
    /// Called by the worker: the fraction done, from 0 to 1, and a text on the current step. If it is called faster
    /// than the queue is serviced, only the last values are reported.
    void setProgress(double fraction, std::string_view text = {});
    /// Does the work, on the worker thread.
    virtual void execute() = 0;
    /// Called when the work is done. `waited`: `wait` was called. The queue's `service` passes on an exception.
    virtual void onComplete(bool waited) = 0;
    /// Called with a message if the work threw or no thread could be created. It is called from the run queue, or
    /// earlier from `wait`. By default prints a line with the class and the message on the application output; so does
    /// a queue that drops the task, without calling this, since what it uses may be gone.
    virtual void onFailed(std::string_view text);

private:
    friend class CompletionTask;

    void threadFunc();
    void complete(bool waited);
    void queueFailure();
    void fail();
    void printFailure(std::string_view text) const;
    void abandon() noexcept;
    void release() noexcept;
    void leaveDomain() noexcept;

    urRTB::SignalClient client_;  ///< connected to the thread's signal
    std::unique_ptr<TaskImpl> impl_;
};

}  // namespace nxSupport
