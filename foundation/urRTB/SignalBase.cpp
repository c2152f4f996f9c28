// Adds, counts and ends connections.
#include "foundation/urRTB/SignalBase.h"

namespace urRTB {

Connection SignalBase::add(FunctionBase* function) noexcept {
    if (!function) return Connection();
    function->join(*this);
    if (first_) {
        function->next_ = first_;
        function->previous_ = first_->previous_;
        first_->previous_->next_ = function;
        first_->previous_ = function;
    } else {
        first_ = function;
    }
    return Connection(function);
}

bool SignalBase::hasConnections() const noexcept {
    // Only callbacks that an emission stands on can be removed and still be in the ring.
    FunctionBase const* item = first_;
    while (item && !item->connected()) item = item->next_ == first_ ? nullptr : item->next_;
    return item != nullptr;
}

std::size_t SignalBase::connectionCount() const noexcept {
    if (!first_) return 0;
    std::size_t count = 0;
    FunctionBase const* item = first_;
    do count += item->connected() ? 1 : 0;
    while ((item = item->next_) != first_);
    return count;
}

ur::vector<Connection> SignalBase::connections() const {
    ur::vector<Connection> result;
    if (!first_) return result;
    FunctionBase* item = first_;
    do {
        if (item->connected()) result.push_back(Connection(item));
    } while ((item = item->next_) != first_);
    return result;
}

void SignalBase::disconnectAll() noexcept {
    if (!first_) return;
    // A callback's destructor may destroy this signal: do not access it from here on.
    FunctionBase* item = takeEnded();
    while (item) std::exchange(item, item->next_)->end();
}

// Removes all callbacks before any of their owners' code runs. Those that an emission stands on keep their places, so
// that the emission can continue; returns the others as a chain in order.
FunctionBase* SignalBase::takeEnded() noexcept {
    FunctionBase* chain = nullptr;
    FunctionBase** end = &chain;
    FunctionBase* const last = first_->previous_;
    for (FunctionBase *item = first_, *next = nullptr;; item = next) {
        next = item->next_;
        bool const wasConnected = item->connected();
        item->silence_ |= FunctionBase::removed;
        if (wasConnected && item->unlock()) {
            item->unlink();
            *end = item;
            end = &item->next_;
        }
        if (item == last) break;
    }
    *end = nullptr;
    return chain;
}

// The end of one callback may make another connection here. Running emissions leave through the remaining ring.
void SignalBase::detachAll() noexcept {
    do disconnectAll();
    while (hasConnections());
    FunctionBase* const first = std::exchange(first_, nullptr);
    for (FunctionBase* item = first; item && item->signal_; item = item->next_) item->signal_ = nullptr;
}

}  // namespace urRTB
