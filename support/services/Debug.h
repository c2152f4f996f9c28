// The switches and outputs of diagnostic topics.
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

/// Keeps for each debug code whether it is on and where its text goes, and the indentation of what is printed.
///
/// One for the process, made on first use with all codes off; `DebugPrint` is the usual way to print. Values that
/// are no code are off: nothing switches them, they print nothing and no signal is emitted for them. Main thread
/// only. Handlers of `codeChanged` may switch codes in their turn.
class NX_API Debug {
public:
    /// A code has been switched by `enable`, `disable` or `toggle`, perhaps to what it was before.
    urRTB::Signal<DebugCode> codeChanged;
    /// For the host to emit; nothing here does.
    urRTB::Signal<> hostSignal;

    /// The first call also opens the application output on the standard output: a host that wants it elsewhere
    /// opens it after that.
    static Debug& getInstance();
    Debug(Debug const&) = delete;
    Debug& operator=(Debug const&) = delete;

    [[nodiscard]] bool isEnabled(DebugCode code) const noexcept {
        return isCode(code) && channels_[static_cast<std::size_t>(code)]->isEnabled();
    }
    void enable(DebugCode code);
    void disable(DebugCode code);
    void toggle(DebugCode code);
    /// From now on the code has the state and the output of `channel`, which is not owned and must outlive its use.
    void provideChannel(DebugCode code, urOS::DebugChannel& channel) noexcept;

    /// What the code is about, for people; empty for `NUM_CODES`, "~ unknown ~" for any other value.
    [[nodiscard]] static urString::CString describe(DebugCode code);
    /// The name as in source, also of `NUM_CODES`; empty for what is no code.
    [[nodiscard]] static urString::CString getCodeName(DebugCode code);
    /// `NUM_CODES` when no code has that name.
    [[nodiscard]] DebugCode findCodeByName(urString::CString const& name) const;
    /// "~ unknown ~" for what is no action.
    [[nodiscard]] static urString::CString getActionDescription(DebugAction action);

    /// The number of spaces before each line.
    [[nodiscard]] std::int32_t indent() const noexcept { return indent_; }
    void incrementIndent() noexcept { indent_ += 2; }
    void decrementIndent() noexcept { indent_ -= 2; }

    /// Prints indented text, without ending the line, if the code is on.
    [[gnu::format(printf, 3, 4)]] void print_(DebugCode code, char const* format, ...);
    /// The same, ending the line if `newline`.
    [[gnu::format(printf, 4, 0)]] void vprint(DebugCode code, bool newline, char const* format, va_list arguments);

private:
    Debug();
    ~Debug() = default;

    [[nodiscard]] static bool isCode(DebugCode code) noexcept { return code >= 0 && code < NUM_CODES; }
    void set(DebugCode code, bool enabled);

    ur::vector<urOS::DebugChannel*> channels_;  ///< those in use, by code
    ur::vector<urOS::DebugChannel> ownChannels_;
    ur::map<urString::CString, DebugCode, urString::less> codes_;  ///< by name
    std::int32_t indent_ = 0;
};

}  // namespace nxSupport
