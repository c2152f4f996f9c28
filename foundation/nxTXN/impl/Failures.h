// Keeping the first of several exceptions while the work goes on.
#pragma once

#include <exception>

namespace nxTXN::impl {

class Failures {
public:
    /// False when the action has thrown.
    template <class Action>
    bool run(Action&& action) noexcept {
        try {
            action();
            return true;
        } catch (...) {
            add(std::current_exception());
            return false;
        }
    }
    void add(std::exception_ptr const& failure) noexcept {
        if (!first_) first_ = failure;
    }

    [[nodiscard]] bool any() const noexcept { return first_ != nullptr; }
    [[nodiscard]] std::exception_ptr const& first() const noexcept { return first_; }

private:
    std::exception_ptr first_;
};

}  // namespace nxTXN::impl
