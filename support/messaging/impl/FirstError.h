// User code on the way out of something that must be finished.
#pragma once

#include <exception>
#include <utility>

#include "foundation/urOS/reportException.h"

namespace nxSupport::impl {

/// Runs pieces of user code one after the other, whatever they throw: keeps the first exception for the caller and
/// prints those after it.
class FirstError {
public:
    /// `where` begins the lines printed, and outlives this object.
    explicit FirstError(char const* where) noexcept : where_(where) {}

    template <class Code>
    void guard(Code&& code) noexcept {
        try {
            std::forward<Code>(code)();
        } catch (...) {
            keep();
        }
    }

    /// Throws the exception kept, if there is one.
    void rethrow() const {
        if (error_) std::rethrow_exception(error_);
    }
    /// The last step of a destructor: throws it, or prints it while another exception unwinds the stack.
    void leaveDestructor() const {
        if (error_) [[unlikely]]
            throwOrPrint();
    }
    /// Prints it.
    void print() const noexcept {
        if (error_) urOS::reportException(where_, error_);
    }

private:
    [[gnu::noinline]] void throwOrPrint() const {
        if (std::uncaught_exceptions() == 0) std::rethrow_exception(error_);
        print();
    }
    void keep() noexcept {
        if (error_) {
            urOS::reportException(where_, std::current_exception());
        } else {
            error_ = std::current_exception();
        }
    }

    char const* where_;
    std::exception_ptr error_;
};

}  // namespace nxSupport::impl
