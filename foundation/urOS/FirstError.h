// Keeps the first of several exceptions while work continues.
#pragma once

#include <exception>
#include <utility>

#include "foundation/urOS/reportException.h"

namespace urOS {

/// Runs pieces of user code one after the other, whatever they throw. Keeps the first exception for the caller; prints
/// or drops later ones.
class FirstError {
public:
    /// Drops later exceptions.
    FirstError() noexcept = default;
    /// Prints later exceptions. Printed lines begin with `where`, which must outlive this object.
    explicit FirstError(char const* where) noexcept : where_(where) {}

    /// False if the code has thrown.
    template <class Code>
    bool guard(Code&& code) noexcept {
        try {
            std::forward<Code>(code)();
            return true;
        } catch (...) {
            add(std::current_exception());
            return false;
        }
    }
    void add(std::exception_ptr const& error) noexcept {
        if (!error_) {
            error_ = error;
        } else if (where_) {
            reportException(where_, error);
        }
    }

    /// Null if nothing has thrown.
    [[nodiscard]] std::exception_ptr const& get() const noexcept { return error_; }
    /// Throws the exception, if there is one.
    void rethrow() const {
        if (error_) std::rethrow_exception(error_);
    }
    /// The last step of a destructor: throws the exception, or prints it while another one unwinds the stack.
    void leaveDestructor() const {
        if (!error_) return;
        if (std::uncaught_exceptions() == 0) rethrow();
        print();
    }
    /// Prints the exception, if there is one. Requires: a `where`.
    void print() const noexcept {
        if (error_) reportException(where_, error_);
    }

private:
    char const* where_ = nullptr;
    std::exception_ptr error_;
};

}  // namespace urOS
