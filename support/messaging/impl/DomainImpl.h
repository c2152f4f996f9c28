// The private state of a domain.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "foundation/ur/ImplBase.h"
#include "foundation/ur/containers.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/Context.h"

namespace nxSupport {

class AsyncTask;
class ContextObserver;

/// The stacks of a domain, kept together with the process-wide one by which the current call information is found.
///
/// Contexts are chained through themselves: pushing and popping them takes no memory and cannot fail.
struct DomainImpl final : ur::ImplBase {
    using CallInfoField = std::unique_ptr<CallInfo>;

    explicit DomainImpl(Domain* primaryDomain) noexcept : primary(primaryDomain) {}
    DomainImpl(DomainImpl const&) = delete;
    DomainImpl& operator=(DomainImpl const&) = delete;
    /// Lets go of contexts that are still active.
    ~DomainImpl() override;

    void push(Context const& context) {
        if (context.mode_ != Context::Bare) [[likely]]
            pushMode(context.mode_);
        context.outer_ = std::exchange(innermost, &context);
        context.before_ = std::exchange(latest, &context);
        context.callInfo_ = &callInfo;
    }
    void popMode(Context const& context) noexcept {
        if (innermost != &context) return popModeBelow(context);
        modeStack.pop_back();
    }
    /// Off all stacks but that of the modes.
    void pop(Context const& context) noexcept {
        if (innermost != &context || latest != &context) return popBelow(context);
        innermost = context.outer_;
        latest = context.before_;
    }

    void makeCallInfo() {
        if (!spare) [[unlikely]]
            makeSpare();
        callInfo.swap(spare);
        callInfoDepth = static_cast<std::int32_t>(modeStack.size());
    }
    /// The hook that is told of the end may have suppressed it, or released another in its place.
    void dropCallInfo(CallInfo const* ending) noexcept {
        if (callInfo.get() != ending) [[unlikely]]
            return dropSuppressed(ending);
        callInfo->clearInterfaces();
        if (spare) [[unlikely]]
            dropSpare();
        callInfo.swap(spare);
        callInfoDepth = 0;
    }
    void suppress();
    void restore() noexcept;

    /// Of all active contexts in the process, the one that began last.
    static Context const* latest;

    Domain* const primary;
    ur::vector<Context::Mode> modeStack;  ///< all but Bare ones
    CallInfoField callInfo;
    std::int32_t callInfoDepth = 0;      ///< size of the mode stack with the context that made it; 0 without
    Context const* innermost = nullptr;  ///< active context of this domain
    ur::vector<std::pair<CallInfoField, std::int32_t>> suppressedCallInfos;
    AsyncTask* asyncTask = nullptr;
    ContextObserver* observer = nullptr;
    CallInfoField spare;  ///< an empty one, so that contexts begun one after the other need no new memory

private:
    void pushMode(Context::Mode mode) {
        if (modeStack.size() == modeStack.capacity()) [[unlikely]]
            return pushModeInMoreRoom(mode);
        modeStack.push_back(mode);
    }
    // Off the common road.
    void pushModeInMoreRoom(Context::Mode mode);
    void makeSpare();
    void dropSpare() noexcept;
    void dropSuppressed(CallInfo const* ending) noexcept;
    /// For contexts that end out of order.
    void popModeBelow(Context const& context) noexcept;
    void popBelow(Context const& context) noexcept;
};

}  // namespace nxSupport
