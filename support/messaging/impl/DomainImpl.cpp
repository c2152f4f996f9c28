// The stacks of a domain.
#include "support/messaging/impl/DomainImpl.h"

#include <algorithm>
#include <iterator>

#include "support/messaging/impl/misuse.h"

namespace nxSupport {

namespace {

template <class T>
void makeRoom(ur::vector<T>& stack) {
    if (stack.size() == stack.capacity()) stack.reserve(std::max<std::size_t>(16, 2 * stack.size()));
}

}  // namespace

constinit ur::vector<DomainImpl::CallInfoField const*> DomainImpl::callInfoStack;

DomainImpl::~DomainImpl() {
    if (!contexts.empty()) impl::reportMisuse("nxSupport::Domain: destroyed with active contexts.");
    for (Context const* context : contexts) context->domain_ = nullptr;
    std::erase(callInfoStack, &callInfo);
}

void DomainImpl::push(Context const& context) {
    makeRoom(modeStack);
    makeRoom(contexts);
    makeRoom(callInfoStack);
    contexts.push_back(&context);
    callInfoStack.push_back(&callInfo);
    if (context.mode() != Context::Bare) modeStack.push_back(context.mode());
}

// Here and below, what is taken off lies on top unless contexts end out of order.
void DomainImpl::popMode(Context const& context) noexcept {
    auto place = std::prev(modeStack.end());
    for (auto later = contexts.rbegin(); *later != &context; ++later)
        if ((*later)->mode() != Context::Bare) --place;
    modeStack.erase(place);
}

void DomainImpl::pop(Context const& context) noexcept {
    auto place = std::prev(contexts.end());
    auto field = std::find(callInfoStack.rbegin(), callInfoStack.rend(), &callInfo);
    if (*place != &context || field != callInfoStack.rbegin())
        impl::reportMisuse("nxSupport::Domain: a context has ended before one that began later.");
    for (; *place != &context; --place) field = std::find(std::next(field), callInfoStack.rend(), &callInfo);
    callInfoStack.erase(std::prev(field.base()));
    contexts.erase(place);
}

void DomainImpl::makeCallInfo() {
    callInfo = spare ? std::move(spare) : std::make_unique<CallInfo>();
    callInfoDepth = static_cast<std::int32_t>(modeStack.size());
}

void DomainImpl::dropCallInfo() noexcept {
    callInfo->clearInterfaces();
    spare = std::move(callInfo);
    callInfoDepth = 0;
}

void DomainImpl::suppress() {
    suppressedCallInfos.emplace_back(nullptr, callInfoDepth);
    suppressedCallInfos.back().first = std::move(callInfo);
    callInfoDepth = 0;
}

void DomainImpl::restore() noexcept {
    callInfo = std::move(suppressedCallInfos.back().first);
    callInfoDepth = suppressedCallInfos.back().second;
    suppressedCallInfos.pop_back();
}

}  // namespace nxSupport
