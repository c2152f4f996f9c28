// The stacks of a domain, off their common road.
#include "support/messaging/impl/DomainImpl.h"

#include <iterator>

#include "support/messaging/impl/misuse.h"

namespace nxSupport {

namespace {

void unlink(Context const*& top, Context const* Context::*next, Context const& context) noexcept {
    Context const** link = &top;
    while (*link != &context) link = &(const_cast<Context*>(*link)->*next);
    *link = context.*next;
}

}  // namespace

constinit Context const* DomainImpl::latest = nullptr;

DomainImpl::~DomainImpl() {
    if (!innermost) return;
    impl::reportMisuse("nxSupport::Domain: destroyed with active contexts.");
    for (; innermost; innermost = innermost->outer_) {
        innermost->domain_ = nullptr;
        unlink(latest, &Context::before_, *innermost);
    }
}

void DomainImpl::popModeBelow(Context const& context) noexcept {
    auto place = std::prev(modeStack.end());
    for (Context const* later = innermost; later != &context; later = later->outer_)
        if (later->mode() != Context::Bare) --place;
    modeStack.erase(place);
}

void DomainImpl::popBelow(Context const& context) noexcept {
    impl::reportMisuse("nxSupport::Domain: a context has ended before one that began later.");
    unlink(latest, &Context::before_, context);
    unlink(innermost, &Context::outer_, context);
}

void DomainImpl::pushModeInMoreRoom(Context::Mode mode) { modeStack.push_back(mode); }
void DomainImpl::makeSpare() { spare = std::make_unique<CallInfo>(); }
void DomainImpl::dropSpare() noexcept { spare.reset(); }

void DomainImpl::dropSuppressed(CallInfo const* ending) noexcept {
    for (auto& [suppressed, depth] : suppressedCallInfos) {
        if (suppressed.get() != ending) continue;
        suppressed.reset();
        depth = 0;
    }
}

void DomainImpl::suppress() {
    suppressedCallInfos.emplace_back(nullptr, callInfoDepth);
    suppressedCallInfos.back().first = std::move(callInfo);
    callInfoDepth = 0;
}

void DomainImpl::restore() noexcept {
    if (callInfo) dropCallInfo(callInfo.get());  // of a context inside, whose hook may still look at it
    callInfo = std::move(suppressedCallInfos.back().first);
    callInfoDepth = suppressedCallInfos.back().second;
    suppressedCallInfos.pop_back();
}

}  // namespace nxSupport
