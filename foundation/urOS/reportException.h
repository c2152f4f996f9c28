// What becomes of an exception that nobody can be given.
#pragma once

#include <exception>
#include <string>

#include "foundation/ur/Export.h"

namespace urOS {

/// What the exception says of itself; "unknown exception" for one that is no `std::exception`.
[[nodiscard]] NX_API std::string exceptionText(std::exception_ptr const& exception);

/// Prints "where: text" on the application output. Never fails: with no memory for that it prints nothing.
NX_API void reportException(char const* where, std::exception_ptr const& exception) noexcept;

}  // namespace urOS
