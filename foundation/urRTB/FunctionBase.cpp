// How a callback leaves its signal.
#include "foundation/urRTB/FunctionBase.h"

#include "foundation/ur/TypeInfo.h"
#include "foundation/urRTB/SignalBase.h"

namespace urRTB {

FunctionBase::~FunctionBase() = default;

std::string FunctionBase::describe() const { return ur::TypeInfo::of(*this).readableName(); }

void FunctionBase::onDisconnected() noexcept {}

void FunctionBase::disconnect() noexcept {
    if (removed_) return;
    removed_ = true;
    if (locks_ == 0) leave();
}

void FunctionBase::leave() noexcept {
    unlink();
    end();
}

void FunctionBase::unlink() noexcept {
    if (signal_ && signal_->first_ == this) signal_->first_ = next_ == this ? nullptr : next_;
    previous_->next_ = next_;
    next_->previous_ = previous_;
}

// Runs code of the callback's owner, which may do anything to the signal: the ring must be whole by now.
void FunctionBase::end() noexcept {
    onDisconnected();
    unref();
}

}  // namespace urRTB
