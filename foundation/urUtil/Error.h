// The outcome of a call into the system.
#pragma once

#include <memory>
#include <string_view>
#include <system_error>

#include "foundation/ur/Export.h"

namespace urUtil {

/// Tells whether a call that depends on the system succeeded, and if not, why.
///
/// A value: success unless built as a failure, and then it never changes its mind. Success costs
/// neither memory nor time; copies of a failure share its text, also between threads.
/// There is no conversion to bool, because both readings of it are in use: ask `ok` or `isError`.
class [[nodiscard]] Error {
public:
    Error() noexcept = default;
    /// A failure, whatever the code. Codes are `errno` values; 0 when none fits.
    NX_API Error(int code, std::string_view message);
    /// The failure that `errno` value `code` stands for, as "what: the system's text of it".
    NX_API static Error fromSystem(int code, std::string_view what);
    /// The same of the `errno` value that `code` comes to, whatever the system's own numbers are.
    NX_API static Error fromSystem(std::error_code code, std::string_view what);

    [[nodiscard]] bool ok() const noexcept { return !failure_; }
    [[nodiscard]] bool isError() const noexcept { return !ok(); }
    /// 0 for success.
    [[nodiscard]] NX_API int code() const noexcept;
    /// Empty for success. Lives as long as this error or a copy of it.
    [[nodiscard]] NX_API std::string_view message() const noexcept;

private:
    struct Failure;
    std::shared_ptr<Failure const> failure_;
};

}  // namespace urUtil
