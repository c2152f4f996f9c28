// The stack of contexts in which a host's operations run.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urRTB/Signal.h"
#include "support/messaging/Context.h"

namespace urThread {
class RunQueue;
}

namespace nxSupport {

class AsyncTask;
class CallInfo;
class ContextObserver;
struct DomainImpl;

/// Keeps the active contexts and their modes, and the call information of the outermost one.
///
/// Abstract: the host derives from it, owns it, and destroys it when no context is active. If a context is active, the
/// domain detaches it, so that its end does nothing, and a debug build reports that on the application output. A debug
/// build also reports contexts that end out of order; each still removes only itself from the stacks.
///
/// A hook or handler that throws leaves the stacks intact; see `Context` for its exception. Any of them may destroy the
/// domain. Main thread only, except for the use of the run queue by `AsyncTask`.
class NX_API Domain {
public:
    /// The last context with a mode is ending: the mode stack is empty, but `getCurrentContext` still returns it.
    urRTB::Signal<> contextStackEmptied;
    /// Emits 1 when call information becomes suppressed, 0 when the last suppression has ended.
    urRTB::Signal<std::int32_t> callInfoSuppressionChanged;
    /// The domain is about to be destroyed. An exception from a handler is printed on the application output.
    urRTB::Signal<Domain*> destroying;
    /// For the host to emit; the library does not.
    urRTB::Signal<> hostSignal;

    /// `parent` may be null.
    explicit Domain(Domain* parent);
    Domain(Domain const&) = delete;
    Domain& operator=(Domain const&) = delete;
    virtual ~Domain();

    /// The queue in which this domain's asynchronous tasks complete. It must outlive all started tasks.
    virtual urThread::RunQueue& runQueue() = 0;

    /// Called by the context, as is `endContext`.
    void beginContext(Context const& context);
    void endContext(Context const& context);

    /// The parent, or this domain if it has none.
    [[nodiscard]] Domain* getPrimary() const noexcept;
    /// The modes of the active contexts except Bare ones, outermost first.
    [[nodiscard]] ur::vector<Context::Mode> const& contextStack() const noexcept;
    /// The innermost active context; null if there is none.
    [[nodiscard]] Context const* getCurrentContext() const noexcept;
    /// The outermost active context; null if there is none.
    [[nodiscard]] Context const* getRootContext() const noexcept;
    /// Whether `domain` exists and its destruction has not begun. `domain` may point to a destroyed object.
    [[nodiscard]] static bool isAlive(Domain const* domain) noexcept;
    /// Whether the innermost mode is Const or ConstWithRedraw.
    [[nodiscard]] bool isConst() const noexcept;

    /// Delays `release` until `unlock`.
    void lock() noexcept { locked_ = true; }
    /// Runs a delayed `release`, which may destroy the domain.
    void unlock();
    /// Declares that the domain is no longer needed: calls `onRelease`, at once unless it is locked.
    void release();

    [[nodiscard]] bool callInfoSuppressed() const noexcept;
    /// Does nothing, because contexts create the call information.
    void assertCallInfoCreated() const noexcept {}

    /// The task for `waitForAsyncTask`; null for none. Not owned. Tasks call this themselves.
    void setAsyncTask(AsyncTask* task) noexcept;
    /// Waits for the task's work to end but does not complete the task. False if there is no task.
    bool waitForAsyncTask();
    /// Count the declared asynchronous operations of all domains. Tasks do not declare any.
    static void declareAsyncOperationBegin() noexcept;
    static void declareAsyncOperationEnd() noexcept;
    [[nodiscard]] bool runningAsyncOperation() const noexcept;

    /// Reports every context that begins from now on to `observer`; null stops that. Not owned.
    void setContextObserver(ContextObserver* observer) noexcept;

protected:
    /// A context has been pushed. If this throws, the context does not begin.
    virtual void onBeginContext(Context const& context) = 0;
    /// A context starts to end.
    virtual void onEndContext(Context const& context) = 0;
    /// Fills `callInfo`. `appOnly`: it is created for an AppOnly context.
    virtual void onCallInfoCreated(CallInfo* callInfo, bool appOnly) = 0;
    /// `callInfo` is about to be destroyed.
    virtual void onCallInfoDestroyed(CallInfo* callInfo) = 0;

private:
    friend class AsyncTask;
    friend class CallInfo;
    friend class CallInfoControl;
    friend class Context;
    friend struct DomainImpl;
    friend struct DomainProbe;  // for the tests only

    /// Called when the domain is released and not locked. Deletes the domain by default.
    virtual void onRelease();

    /// Whether a context of that mode may begin now.
    [[nodiscard]] bool isCompatibleMode(Context::Mode mode) const noexcept;
    void callInfoSuppress();
    void callInfoRelease();
    static CallInfo const& callInfoFunc();

    std::unique_ptr<DomainImpl> impl_;
    bool locked_ = false;
    bool releasePending_ = false;
};

}  // namespace nxSupport
