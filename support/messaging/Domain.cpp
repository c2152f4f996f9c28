// The contexts, call information and tasks of a host.
#include "support/messaging/Domain.h"

#include <algorithm>

#include "foundation/urOS/FirstError.h"
#include "support/messaging/AsyncTask.h"
#include "support/messaging/impl/DomainImpl.h"

namespace nxSupport {

namespace {

// Counts for the whole process. Main thread only.
std::int32_t asyncOperationCount = 0;

/// All domains, in any order. Never destroyed, because domains may have static lifetime.
ur::vector<Domain const*>& domains() {
    static auto& all = *new ur::vector<Domain const*>;
    return all;
}

}  // namespace

Domain::Domain(Domain* parent) : impl_(std::make_unique<DomainImpl>(*this, parent)) { domains().push_back(this); }

Domain::~Domain() {
    std::erase(domains(), this);
    urOS::FirstError errors("nxSupport::Domain::destroying");
    errors.guard([this] { destroying.emit(this); });
    errors.print();
}

Domain* Domain::getPrimary() const noexcept { return impl_->primary; }

ur::vector<Context::Mode> const& Domain::contextStack() const noexcept { return impl_->modeStack; }

void Domain::beginContext(Context const& context) { impl_->begin(context); }

void Domain::endContext(Context const& context) {
    urOS::FirstError errors("nxSupport::Domain::endContext");
    impl_->end(context, errors);
    errors.rethrow();
}

Context const* Domain::getCurrentContext() const noexcept {
    auto const& active = DomainImpl::active();
    auto const place = std::find_if(active.rbegin(), active.rend(), [this](auto* c) { return impl_->owns(c); });
    return place == active.rend() ? nullptr : *place;
}

Context const* Domain::getRootContext() const noexcept {
    auto const& active = DomainImpl::active();
    auto const place = std::ranges::find_if(active, [this](auto* context) { return impl_->owns(context); });
    return place == active.end() ? nullptr : *place;
}

bool Domain::isAlive(Domain const* domain) noexcept { return std::ranges::find(domains(), domain) != domains().end(); }

bool Domain::isConst() const noexcept { return !impl_->modeStack.empty() && Context::isConst(impl_->modeStack.back()); }

bool Domain::isCompatibleMode(Context::Mode mode) const noexcept {
    ur::vector<Context::Mode> const& stack = impl_->modeStack;
    if (Context::isConst(mode)) return true;
    if (stack.empty()) return mode <= Context::Bare;
    Context::Mode const top = stack.back();
    switch (mode) {
        case Context::InteractionStart:
        case Context::InteractionEnd:
        case Context::Transient: return top == Context::Undecided;
        case Context::InteractionPerform: return top == Context::InteractionStart || top == Context::Undecided;
        case Context::Momentary: {
            if (top == Context::Undecided) return true;
            bool const outermost = stack.size() == 1 || (stack.size() == 2 && stack.front() == Context::Undecided);
            return outermost && (top == Context::Momentary || top == Context::InteractionEnd);
        }
        case Context::Undecided: return top == Context::Undecided || top == Context::Const;
        case Context::AppOnly: return top == Context::AppOnly || top == Context::NoTxn;
        case Context::Bare: return top == Context::Const;
        default: return false;
    }
}

void Domain::unlock() {
    locked_ = false;
    if (releasePending_) onRelease();
}

void Domain::release() {
    releasePending_ = true;
    if (!locked_) onRelease();
}

void Domain::onRelease() { delete this; }

void Domain::callInfoSuppress() {
    impl_->suppressCallInfo();
    if (impl_->suppressedCallInfos.size() == 1) callInfoSuppressionChanged.emit(1);
}

void Domain::callInfoRelease() {
    if (!callInfoSuppressed()) return;
    impl_->restoreCallInfo();
    if (!callInfoSuppressed()) callInfoSuppressionChanged.emit(0);
}

bool Domain::callInfoSuppressed() const noexcept { return !impl_->suppressedCallInfos.empty(); }

CallInfo const& Domain::callInfoFunc() {
    static CallInfo const& empty = *new CallInfo;  // never destroyed: code that runs at exit may call this
    if (DomainImpl::active().empty()) return empty;
    auto const& callInfo = DomainImpl::active().back()->domain_->impl_->callInfo;
    return callInfo ? *callInfo : empty;
}

void Domain::setAsyncTask(AsyncTask* task) noexcept { impl_->asyncTask = task; }

bool Domain::waitForAsyncTask() {
    if (!impl_->asyncTask) return false;
    impl_->asyncTask->wait();
    return true;
}

void Domain::declareAsyncOperationBegin() noexcept { ++asyncOperationCount; }
void Domain::declareAsyncOperationEnd() noexcept { --asyncOperationCount; }
bool Domain::runningAsyncOperation() const noexcept { return asyncOperationCount > 0; }

void Domain::setContextObserver(ContextObserver* observer) noexcept {
    impl_->observer = observer;
    for (Context const* context : DomainImpl::active()) {
        if (impl_->owns(context)) context->begun_ = {};
    }
}

}  // namespace nxSupport
