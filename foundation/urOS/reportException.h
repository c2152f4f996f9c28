// Reports exceptions that cannot be thrown to a caller.
#pragma once

#include <exception>
#include <string>

#include "foundation/ur/Export.h"

namespace urOS {

/// The exception's message; "unknown exception" for one that is not a `std::exception`.
[[nodiscard]] NX_API std::string exceptionText(std::exception_ptr const& exception);

/// Prints "where: text" on the application output. Never fails: prints nothing when memory is exhausted.
NX_API void reportException(char const* where, std::exception_ptr const& exception) noexcept;

}  // namespace urOS
