// The printer that functions use for diagnostic text.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "support/services/Debug.h"

namespace nxSupport {

/// A scoped object that prints for one function on one code; what functions print that run inside is indented.
///
/// Costs a check when the code is off, and does nothing, even if the code is switched on later. From its first line
/// until it goes, lines of other functions stand two spaces further in; those of the same function do not indent
/// again. Printers go in the reverse order of their making, as local variables do. Main thread only.
class NX_API DebugPrint {
public:
    /// `function`: the full name, which is not copied and must outlive the printer.
    DebugPrint(char const* function, DebugCode code)
        : debug_(Debug::getInstance()), function_(function), code_(code), enabled_(debug_.isEnabled(code)) {}
    DebugPrint(DebugPrint const&) = delete;
    DebugPrint& operator=(DebugPrint const&) = delete;
    ~DebugPrint() {
        if (printed_) leave();
    }

    /// Prints one line, formatted as `printf` does.
    [[gnu::format(printf, 2, 3)]] void operator()(char const* format, ...);

private:
    [[nodiscard]] static bool isSameFunction();
    void enter();
    void leave() noexcept;

    static ur::vector<char const*> s_functions;  ///< of the printers that have printed, outermost first

    Debug& debug_;
    char const* function_;
    DebugCode code_;
    bool enabled_;
    bool printed_ = false;
};

}  // namespace nxSupport
