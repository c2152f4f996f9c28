// Begins and ends contexts.
#include "support/messaging/impl/DomainImpl.h"

#include <algorithm>
#include <iterator>

#include "foundation/urOS/FirstError.h"
#include "support/messaging/ContextObserver.h"
#include "support/messaging/Domain.h"
#include "support/messaging/impl/misuse.h"

namespace nxSupport {

namespace {

using Clock = ContextObserver::Clock;

bool hasMode(Context const& context) noexcept { return context.mode() != Context::Bare; }
/// Whether the owner's hooks are called for a context with a mode.
bool callsHooks(Context const& context) noexcept { return context.mode() != Context::Bootstrap; }

}  // namespace

ur::vector<Context const*>& DomainImpl::active() noexcept {
    static auto& all = *new ur::vector<Context const*>;  // never destroyed, because domains may have static lifetime
    return all;
}

DomainImpl::~DomainImpl() {
    std::size_t const left = std::erase_if(active(), [this](Context const* context) {
        if (!owns(context)) return false;
        context->domain_ = nullptr;
        return true;
    });
    if (left > 0) impl::reportMisuse("nxSupport::Domain: destroyed with active contexts.");
}

void DomainImpl::begin(Context const& context) {
    push(context);
    try {
        if (observer && !reportBegin(context)) return;
        if (!hasMode(context)) return;
        if (!callInfo && !createCallInfo(context)) return;
        if (callsHooks(context)) domain.onBeginContext(context);
    } catch (...) {
        if (context.domain()) {
            urOS::FirstError errors("nxSupport::Context: while it failed to begin");
            if (!hasMode(context) || leaveMode(context, errors)) leave(context, errors);
            errors.print();
        }
        throw;
    }
}

void DomainImpl::end(Context const& context, urOS::FirstError& errors) noexcept {
    if (hasMode(context)) {
        if (callsHooks(context)) {
            errors.guard([&] { domain.onEndContext(context); });
            if (!context.domain()) return;
        }
        if (!leaveMode(context, errors)) return;
        if (modeStack.empty()) {
            errors.guard([&] { domain.contextStackEmptied.emit(); });
            if (!context.domain()) return;
        }
    }
    leave(context, errors);
}

bool DomainImpl::reportBegin(Context const& context) {
    context.begun_ = Clock::now();
    observer->onBegin(context, context.begun_);
    return context.domain() != nullptr;
}

bool DomainImpl::createCallInfo(Context const& context) {
    auto const made = std::make_shared<CallInfo>();
    callInfo = made;
    callInfoDepth = modeStack.size();
    if (!callsHooks(context)) return true;
    try {
        domain.onCallInfoCreated(made.get(), context.mode() == Context::AppOnly);
    } catch (...) {
        if (context.domain()) forget(made);
        throw;
    }
    return context.domain() != nullptr;
}

bool DomainImpl::dropCallInfo(Context const& context, urOS::FirstError& errors) noexcept {
    auto const ending = callInfo;
    if (callsHooks(context)) errors.guard([&] { domain.onCallInfoDestroyed(ending.get()); });
    if (!context.domain()) return false;
    forget(ending);
    return true;
}

bool DomainImpl::leaveMode(Context const& context, urOS::FirstError& errors) noexcept {
    if (callInfoDepth == modeStack.size() && !dropCallInfo(context, errors)) return false;
    popMode(context);
    return true;
}

void DomainImpl::leave(Context const& context, urOS::FirstError& errors) noexcept {
    if (observer && context.begun_ != Clock::time_point()) {
        Clock::time_point const now = Clock::now();
        errors.guard([&] { observer->onEnd(context, now, now - context.begun_); });
        if (!context.domain()) return;
    }
    pop(context);
}

void DomainImpl::push(Context const& context) {
    active().push_back(&context);
    if (!hasMode(context)) return;
    try {
        modeStack.push_back(context.mode());
    } catch (...) {
        active().pop_back();
        throw;
    }
}

void DomainImpl::popMode(Context const& context) noexcept {
    auto const place = std::find(active().rbegin(), active().rend(), &context);
    auto const later = std::count_if(active().rbegin(), place,
                                     [this](Context const* other) { return owns(other) && hasMode(*other); });
    modeStack.erase(modeStack.end() - 1 - later);
}

void DomainImpl::pop(Context const& context) noexcept {
    if (active().back() != &context)
        impl::reportMisuse("nxSupport::Domain: a context has ended before one that began later.");
    active().erase(std::prev(std::find(active().rbegin(), active().rend(), &context).base()));
}

void DomainImpl::forget(std::shared_ptr<CallInfo> const& ending) noexcept {
    if (callInfo == ending) {
        callInfo.reset();
        callInfoDepth = 0;
    }
    for (auto& [suppressed, depth] : suppressedCallInfos) {
        if (suppressed != ending) continue;
        suppressed.reset();
        depth = 0;
    }
}

void DomainImpl::suppressCallInfo() {
    suppressedCallInfos.emplace_back(callInfo, callInfoDepth);
    callInfo.reset();
    callInfoDepth = 0;
}

void DomainImpl::restoreCallInfo() noexcept {
    auto [suppressed, depth] = std::move(suppressedCallInfos.back());
    callInfo = std::move(suppressed);
    callInfoDepth = depth;
    suppressedCallInfos.pop_back();
}

}  // namespace nxSupport
