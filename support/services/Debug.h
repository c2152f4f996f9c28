// Switches and outputs of debug codes.
#pragma once

#include <cstdarg>
#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urOS/DebugChannel.h"
#include "foundation/urRTB/Signal.h"
#include "foundation/urString/CString.h"
#include "support/services/DebugCode.h"

namespace nxSupport {

/// Stores the state and the output of each debug code, and the indentation of printed text.
///
/// There is one object for the process, created on first use with all codes off. Code usually prints through
/// `DebugPrint`. A value that is not a code is always off: it cannot be switched, prints nothing and emits no signal.
/// Main thread only. Handlers of `codeChanged` may switch codes themselves.
class NX_API Debug {
public:
    /// Emitted after `enable`, `disable` or `toggle`, even if the state stays the same.
    urRTB::Signal<DebugCode> codeChanged;
    /// For the host to emit; the library does not.
    urRTB::Signal<> hostSignal;

    /// The first call also opens the application output on the standard output. A host that wants it elsewhere opens it
    /// after that call.
    static Debug& getInstance();
    Debug(Debug const&) = delete;
    Debug& operator=(Debug const&) = delete;

    [[nodiscard]] bool isEnabled(DebugCode code) const noexcept {
        return isCode(code) && channels_[static_cast<std::size_t>(code)]->isEnabled();
    }
    void enable(DebugCode code);
    void disable(DebugCode code);
    void toggle(DebugCode code);
    /// The code takes its state and output from `channel` from now on. The channel is not owned and must stay valid.
    /// Histories then use the channel of `Debug_Undo` too.
    void provideChannel(DebugCode code, urOS::DebugChannel& channel) noexcept;

    /// A description for people; empty for `NUM_CODES`, "~ unknown ~" for any other value.
    [[nodiscard]] static urString::CString describe(DebugCode code);
    /// The name as in source, including that of `NUM_CODES`; empty for other values.
    [[nodiscard]] static urString::CString getCodeName(DebugCode code);
    /// Returns `NUM_CODES` if no code has that name.
    [[nodiscard]] DebugCode findCodeByName(urString::CString const& name) const;
    /// Returns "~ unknown ~" for a value that is not an action.
    [[nodiscard]] static urString::CString getActionDescription(DebugAction action);

    /// The number of spaces before each line.
    [[nodiscard]] std::int32_t indent() const noexcept { return indent_; }
    void incrementIndent() noexcept { indent_ += 2; }
    void decrementIndent() noexcept { indent_ -= 2; }

    /// Prints indented text if the code is on. Does not end the line.
    [[gnu::format(printf, 3, 4)]] void print_(DebugCode code, char const* format, ...);
    /// The same; ends the line if `newline`.
    [[gnu::format(printf, 4, 0)]] void vprint(DebugCode code, bool newline, char const* format, va_list arguments);

private:
    Debug();
    ~Debug() = default;

    [[nodiscard]] static bool isCode(DebugCode code) noexcept { return code >= 0 && code < NUM_CODES; }
    void set(DebugCode code, bool enabled);

    ur::vector<urOS::DebugChannel*> channels_;  ///< the channels in use, by code
    ur::vector<urOS::DebugChannel> ownChannels_;
    ur::map<urString::CString, DebugCode, urString::less> codes_;  ///< by name
    std::int32_t indent_ = 0;
};

}  // namespace nxSupport
