// What a domain can be asked, and its call information and tasks.
#include "support/messaging/Domain.h"

#include <algorithm>

#include "support/messaging/AsyncTask.h"
#include "support/messaging/CallInfo.h"
#include "support/messaging/ContextObserver.h"
#include "support/messaging/impl/DomainImpl.h"
#include "support/messaging/impl/FirstError.h"

namespace nxSupport {

namespace {

using Clock = ContextObserver::Clock;

// Of the whole process, main thread only.
std::int32_t asyncOperationCount = 0;

/// All domains, in no order. Never destroyed: domains may be of static lifetime.
ur::vector<Domain const*>& domains() {
    static auto& all = *new ur::vector<Domain const*>;
    return all;
}

}  // namespace

Domain::Domain(Domain* parent) : impl_(std::make_unique<DomainImpl>(parent ? parent : this)) {
    domains().push_back(this);
}

Domain::~Domain() {
    std::erase(domains(), this);
    impl::FirstError errors("nxSupport::Domain::destroying");
    errors.guard([this] { destroying.emit(this); });
    errors.print();
}

Domain* Domain::getPrimary() const noexcept { return impl_->primary; }

ur::vector<Context::Mode> const& Domain::contextStack() const noexcept { return impl_->modeStack; }

Context const* Domain::getCurrentContext() const noexcept { return impl_->innermost; }

Context const* Domain::getRootContext() const noexcept {
    Context const* root = impl_->innermost;
    while (root && root->outer_) root = root->outer_;
    return root;
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
    impl_->suppress();
    if (impl_->suppressedCallInfos.size() == 1) callInfoSuppressionChanged.emit(1);
}

void Domain::callInfoRelease() {
    if (!callInfoSuppressed()) return;
    impl_->restore();
    if (!callInfoSuppressed()) callInfoSuppressionChanged.emit(0);
}

bool Domain::callInfoSuppressed() const noexcept { return !impl_->suppressedCallInfos.empty(); }

CallInfo const& Domain::callInfoFunc() {
    static CallInfo const& empty = *new CallInfo;  // never destroyed: code that runs at exit may ask for it
    Context const* const latest = DomainImpl::latest;
    return latest && *latest->callInfo_ ? **latest->callInfo_ : empty;
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
    for (Context const* context = impl_->innermost; context; context = context->outer_)
        context->begun_ = Clock::time_point();
}

}  // namespace nxSupport
