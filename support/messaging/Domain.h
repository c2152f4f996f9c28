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
/// Abstract: the host derives from it, owns it, and destroys it when no context is active. If one is, the domain
/// lets go of it, so that its end does nothing, and a debug build says so on the application output; likewise
/// when contexts end out of order, where each still takes only itself off the stacks.
///
/// A hook or a handler that throws leaves the stacks whole: see `Context` for where its exception goes. Any of
/// them may destroy the domain. Main thread only, but for what `AsyncTask` does with the run queue.
class NX_API Domain {
public:
    /// The last context with a mode is ending: the mode stack is empty, but `getCurrentContext` still gives it.
    urRTB::Signal<> contextStackEmptied;
    /// 1 when the suppression of call information starts, 0 when the last one has ended.
    urRTB::Signal<std::int32_t> callInfoSuppressionChanged;
    /// The domain is about to go. What a handler throws is printed on the application output.
    urRTB::Signal<Domain*> destroying;
    /// For the host to emit; nothing here does.
    urRTB::Signal<> hostSignal;

    /// A domain of its own when `parent` is null.
    explicit Domain(Domain* parent);
    Domain(Domain const&) = delete;
    Domain& operator=(Domain const&) = delete;
    virtual ~Domain();

    /// Where asynchronous tasks of this domain complete. Outlives the tasks that have been started.
    virtual urThread::RunQueue& runQueue() = 0;

    /// Called by the context itself, like `endContext`.
    void beginContext(Context const& context);
    void endContext(Context const& context);

    /// The parent, or this domain when it has none.
    [[nodiscard]] Domain* getPrimary() const noexcept;
    /// The modes of the active contexts except Bare ones, outermost first.
    [[nodiscard]] ur::vector<Context::Mode> const& contextStack() const noexcept;
    /// The innermost active context; null when there is none.
    [[nodiscard]] Context const* getCurrentContext() const noexcept;
    /// The outermost active context; null when there is none.
    [[nodiscard]] Context const* getRootContext() const noexcept;
    /// Whether `domain` is one that exists and has not begun to go. Asked by those who cannot know.
    [[nodiscard]] static bool isAlive(Domain const* domain) noexcept;
    /// The innermost mode is Const or ConstWithRedraw.
    [[nodiscard]] bool isConst() const noexcept;

    /// Puts off `release` until `unlock`.
    void lock() noexcept { locked_ = true; }
    /// May destroy the domain, as `release` may.
    void unlock();
    /// The domain is not needed any more: calls `onRelease`, at once unless it is locked.
    void release();

    [[nodiscard]] bool callInfoSuppressed() const noexcept;
    /// Does nothing: a context that needs call information finds it made.
    void assertCallInfoCreated() const noexcept {}

    /// The task that `waitForAsyncTask` waits for; null for none. Not owned. Tasks call it themselves.
    void setAsyncTask(AsyncTask* task) noexcept;
    /// False when there is no task, otherwise true after its work has ended. Does not complete it.
    bool waitForAsyncTask();
    /// Counts the asynchronous operations that somebody has declared, in all domains together. Tasks declare nothing.
    static void declareAsyncOperationBegin() noexcept;
    static void declareAsyncOperationEnd() noexcept;
    [[nodiscard]] bool runningAsyncOperation() const noexcept;

    /// Tells `observer` of every context that begins from now on; null ends that. Not owned.
    void setContextObserver(ContextObserver* observer) noexcept;

protected:
    /// A context has been pushed. When this throws, the context does not begin.
    virtual void onBeginContext(Context const& context) = 0;
    /// A context starts to end.
    virtual void onEndContext(Context const& context) = 0;
    /// Fill `callInfo` here; `appOnly` tells that it is made for an AppOnly context.
    virtual void onCallInfoCreated(CallInfo* callInfo, bool appOnly) = 0;
    /// `callInfo` is about to go.
    virtual void onCallInfoDestroyed(CallInfo* callInfo) = 0;

private:
    friend class AsyncTask;
    friend class CallInfo;
    friend class CallInfoControl;
    friend class Context;
    friend struct DomainImpl;
    friend struct DomainProbe;  // for the tests alone

    /// Released and not locked. Deletes the domain unless overridden.
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
