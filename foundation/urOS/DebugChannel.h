// Diagnostic text that can be switched off.
#pragma once

#include <cstdarg>

#include "foundation/ur/Export.h"

namespace urOS {

class OStream;

/// Prints when it is enabled, and costs one check when it is not. New channels are disabled.
///
/// A value: a copy has the same state and output, and from then on its own. One thread at a time.
class NX_API DebugChannel {
public:
    void enable() noexcept { enabled_ = true; }
    void disable() noexcept { enabled_ = false; }
    void setEnabled(bool enabled) noexcept { enabled_ = enabled; }
    [[nodiscard]] bool isEnabled() const noexcept { return enabled_; }

    /// Where text goes from now on: `output`, which is not owned, or the application output when null.
    void setOutput(OStream* output) noexcept { output_ = output; }

    /// Formats as `printf` does; everything arrives at once.
    [[gnu::format(printf, 2, 3)]] void print(char const* format, ...);
    [[gnu::format(printf, 2, 0)]] void printArg(char const* format, va_list arguments);

private:
    OStream* output_ = nullptr;
    bool enabled_ = false;
};

}  // namespace urOS
