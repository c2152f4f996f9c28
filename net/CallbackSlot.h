// Holds one callback.
#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace nxNet {

/// Holds a callable or nothing. A callable that is replaced or dropped while it runs stays valid until it returns.
/// After the call the slot is not used, because it may be destroyed. A copied slot holds a copied callable.
template <class... Arguments>
class CallbackSlot {
public:
    using Function = std::function<void(Arguments...)>;

    CallbackSlot() noexcept = default;
    CallbackSlot(CallbackSlot const& other)
        : function_(other.function_ ? std::make_shared<Function>(*other.function_) : nullptr) {}
    CallbackSlot(CallbackSlot&&) noexcept = default;
    CallbackSlot& operator=(CallbackSlot other) noexcept {
        function_.swap(other.function_);
        return *this;
    }
    ~CallbackSlot() = default;

    /// Replaces the callable; an empty `function` removes it.
    void set(Function function) {
        auto next = function ? std::make_shared<Function>(std::move(function)) : nullptr;
        function_.swap(next);
    }
    /// Does nothing if the slot is empty.
    void operator()(Arguments... arguments) const {
        if (auto const running = function_) (*running)(std::forward<Arguments>(arguments)...);
    }

private:
    std::shared_ptr<Function> function_;
};

}  // namespace nxNet
