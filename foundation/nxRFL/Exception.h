// The error that native functions and scripts exchange.
#pragma once

#include <exception>
#include <utility>

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace nxRFL {

/// Describes to a script's author what went wrong in a reflected call. A value: copies share nothing.
///
/// A native function throws it to fail the script that called it. An error of a script reaches native callers as this
/// exception, with the script's stack.
class NX_API Exception : public std::exception {
public:
    explicit Exception(urString::CString message, urString::CString trace = {}) noexcept
        : message_(std::move(message)), trace_(std::move(trace)) {}
    ~Exception() override = default;

    [[nodiscard]] urString::CString const& message() const noexcept { return message_; }
    /// The calls that led to the error, one per line, if it was raised inside a script; otherwise empty.
    [[nodiscard]] urString::CString const& trace() const noexcept { return trace_; }
    [[nodiscard]] char const* what() const noexcept override { return message_.c_str(); }

private:
    urString::CString message_;
    urString::CString trace_;
};

}  // namespace nxRFL
