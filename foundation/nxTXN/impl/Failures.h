// Keeping the first of several exceptions while the work goes on.
#pragma once

#include <exception>

namespace nxTXN::impl {

class Failures {
public:
    template <class Action>
    void run(Action&& action) noexcept {
        try {
            action();
        } catch (...) {
            if (!first_) first_ = std::current_exception();
        }
    }

    [[nodiscard]] bool any() const noexcept { return first_ != nullptr; }
    [[nodiscard]] std::exception_ptr const& first() const noexcept { return first_; }

private:
    std::exception_ptr first_;
};

}  // namespace nxTXN::impl
