// Diagnostic output that can be disabled.
#pragma once

#include <cstdarg>

#include "foundation/ur/Export.h"

namespace urOS {

class OStream;

/// Prints when it is enabled, and costs one check when it is not. New channels are disabled.
///
/// A value: a copy starts with the same state and output and is then independent. One thread at a time.
class NX_API DebugChannel {
public:
    void enable() noexcept { enabled_ = true; }
    void disable() noexcept { enabled_ = false; }
    void setEnabled(bool enabled) noexcept { enabled_ = enabled; }
    [[nodiscard]] bool isEnabled() const noexcept { return enabled_; }

    /// Sends text to `output`, which the caller owns, or to the application output when null.
    void setOutput(OStream* output) noexcept { output_ = output; }

    /// Formats as `printf` does and flushes at once.
    [[gnu::format(printf, 2, 3)]] void print(char const* format, ...);
    [[gnu::format(printf, 2, 0)]] void printArg(char const* format, va_list arguments);

private:
    OStream* output_ = nullptr;
    bool enabled_ = false;
};

}  // namespace urOS
