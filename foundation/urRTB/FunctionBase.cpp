// Removes callbacks from their signal.
#include "foundation/urRTB/FunctionBase.h"

#include "foundation/ur/TypeInfo.h"
#include "foundation/urRTB/SignalBase.h"

namespace urRTB {

FunctionBase::~FunctionBase() = default;

std::string FunctionBase::onDescribe() const { return ur::TypeInfo::of(*this).readableName(); }

void FunctionBase::onDisconnected() noexcept {}

void FunctionBase::join(SignalBase& signal) noexcept {
    ref();
    signal_ = &signal;
    silence_ &= ~removed;
    lock();
}

void FunctionBase::disconnect() noexcept {
    if (!connected()) return;
    silence_ |= removed;
    if (unlock()) leave();
}

void FunctionBase::leave() noexcept {
    unlink();
    end();
}

// Returns the next callback. Leaving may run code that removes that one too: it keeps its place meanwhile and leaves
// later.
FunctionBase* FunctionBase::leaveForNext() noexcept {
    FunctionBase* left = this;
    do {
        FunctionBase* const next = left->next_;
        next->lock();
        left->leave();
        left = next;
    } while (left->unlock());
    return left;
}

void FunctionBase::unlink() noexcept {
    if (signal_ && signal_->first_ == this) signal_->first_ = next_ == this ? nullptr : next_;
    previous_->next_ = next_;
    next_->previous_ = previous_;
}

// Runs code of the callback's owner, which may do anything to the signal: the ring must be consistent by now.
void FunctionBase::end() noexcept {
    onDisconnected();
    unref();
}

}  // namespace urRTB
