// The result of a call into the system.
#pragma once

#include <memory>
#include <string_view>
#include <system_error>

#include "foundation/ur/Export.h"

namespace urUtil {

/// Says whether a call that depends on the system succeeded, and if not, why.
///
/// An immutable value: success unless constructed as a failure. Success costs neither memory nor time; copies of a
/// failure share its text, also between threads. It does not convert to bool, because both meanings of true are in use:
/// call `ok` or `isError`.
class [[nodiscard]] Error {
public:
    Error() noexcept = default;
    /// A failure, whatever the code. Codes are `errno` values, or 0 when none fits.
    NX_API Error(int code, std::string_view message);
    /// The failure of `errno` value `code`, with the message "what: the system's text".
    NX_API static Error fromSystem(int code, std::string_view what);
    /// The same for the `errno` value that `code` corresponds to on any system.
    NX_API static Error fromSystem(std::error_code code, std::string_view what);

    [[nodiscard]] bool ok() const noexcept { return !failure_; }
    [[nodiscard]] bool isError() const noexcept { return !ok(); }
    /// 0 for success.
    [[nodiscard]] NX_API int code() const noexcept;
    /// Empty for success. Valid while this error or a copy of it lives.
    [[nodiscard]] NX_API std::string_view message() const noexcept;

private:
    struct Failure;
    std::shared_ptr<Failure const> failure_;
};

}  // namespace urUtil
