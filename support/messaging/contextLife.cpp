// How contexts begin and end, and what their domain tells about it.
#include <utility>

#include "support/messaging/Context.h"
#include "support/messaging/ContextObserver.h"
#include "support/messaging/Domain.h"
#include "support/messaging/impl/DomainImpl.h"
#include "support/messaging/impl/FirstError.h"

// Any hook, observer or handler may destroy the domain, which then lets go of the context: after each of them the
// context is asked whether it still has one.
namespace nxSupport {

namespace {

using Clock = ContextObserver::Clock;

bool isModed(Context const& context) noexcept { return context.mode() != Context::Bare; }
/// Whether the owner hears of a context with a mode.
bool isTold(Context const& context) noexcept { return context.mode() != Context::Bootstrap; }

}  // namespace

ContextObserver::~ContextObserver() = default;

Context::Context(Domain* domain, Mode mode) : mode_(mode), domain_(domain) { domain->begin(*this); }

Context::~Context() noexcept(false) {
    impl::FirstError errors("nxSupport::Context: while it ended");
    if (domain_) [[likely]]
        domain_->end(*this, errors);
    if (postFunctions_) [[unlikely]]
        errors.guard([this] { runPostFunctions(); });
    domain_ = nullptr;
    errors.leaveDestructor();
}

void Context::runPostFunctions() {
    if (!domain_) return;
    urRTB::ScopedConnection const watch(domain_->destroying.addCallback([this](Domain*) { domain_ = nullptr; }));
    while (auto const functions = std::exchange(postFunctions_, nullptr)) {
        for (PostFunction const& function : *functions) {
            if (!domain_) return;
            function(domain_);
        }
    }
}

void Domain::beginContext(Context const& context) { begin(context); }

[[gnu::always_inline]] bool Domain::createCallInfo(DomainImpl& stacks, Context const& context) {
    stacks.makeCallInfo();
    if (!isTold(context)) return true;
    CallInfo* const made = stacks.callInfo.get();
    try {
        onCallInfoCreated(made, context.mode() == Context::AppOnly);
    } catch (...) {
        if (context.domain()) stacks.dropCallInfo(made);
        throw;
    }
    return context.domain() != nullptr;
}

[[gnu::always_inline]] void Domain::begin(Context const& context) {
    DomainImpl& stacks = *impl_;
    stacks.push(context);
    try {
        if (stacks.observer) [[unlikely]] {
            if (!tellObserver(context)) return;
        }
        if (!isModed(context)) [[unlikely]]
            return;
        if (!stacks.callInfo && !createCallInfo(stacks, context)) return;
        if (isTold(context)) [[likely]]
            onBeginContext(context);
    } catch (...) {
        if (context.domain()) rollBack(context);
        throw;
    }
}

bool Domain::tellObserver(Context const& context) {
    context.begun_ = Clock::now();
    impl_->observer->onBegin(context, context.begun_);
    return context.domain() != nullptr;
}

[[gnu::always_inline]] bool Domain::leaveMode(DomainImpl& stacks, Context const& context,
                                              impl::FirstError& errors) noexcept {
    if (stacks.callInfoDepth == static_cast<std::int32_t>(stacks.modeStack.size())) {
        CallInfo* const ending = stacks.callInfo.get();
        if (isTold(context)) errors.guard([&] { onCallInfoDestroyed(ending); });
        if (!context.domain()) return false;
        stacks.dropCallInfo(ending);
    }
    stacks.popMode(context);
    return true;
}

[[gnu::always_inline]] void Domain::leave(DomainImpl& stacks, Context const& context,
                                          impl::FirstError& errors) noexcept {
    if (stacks.observer) [[unlikely]] {
        if (!tellObserverOfEnd(context, errors)) return;
    }
    stacks.pop(context);
}

void Domain::rollBack(Context const& context) noexcept {
    impl::FirstError errors("nxSupport::Context: while it failed to begin");
    if (!isModed(context) || leaveMode(*impl_, context, errors)) leave(*impl_, context, errors);
    errors.print();
}

[[gnu::always_inline]] void Domain::end(Context const& context, impl::FirstError& errors) noexcept {
    DomainImpl& stacks = *impl_;
    if (isModed(context)) [[likely]] {
        if (isTold(context)) [[likely]] {
            errors.guard([&] { onEndContext(context); });
            if (!context.domain()) return;
        }
        if (!leaveMode(stacks, context, errors)) return;
        if (stacks.modeStack.empty()) {
            errors.guard([&] { contextStackEmptied.emit(); });
            if (!context.domain()) return;
        }
    }
    leave(stacks, context, errors);
}

void Domain::endContext(Context const& context) {
    impl::FirstError errors("nxSupport::Domain::endContext");
    end(context, errors);
    errors.rethrow();
}

bool Domain::tellObserverOfEnd(Context const& context, impl::FirstError& errors) noexcept {
    if (context.begun_ == Clock::time_point()) return true;
    Clock::time_point const now = Clock::now();
    errors.guard([&] { impl_->observer->onEnd(context, now, now - context.begun_); });
    return context.domain() != nullptr;
}

}  // namespace nxSupport
