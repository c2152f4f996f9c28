// Prints diagnostic text for one function.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "support/services/Debug.h"

namespace nxSupport {

/// A scoped object that prints for one function on one code, and indents the text of the functions called inside.
///
/// If the code is off at construction, it only costs a check and stays off, even if the code is switched on later. From
/// its first line to its destruction, lines of other functions are indented by two more spaces; lines of the same
/// function are not. Printers must be destroyed in the reverse order of construction, as local variables are. Main
/// thread only.
class NX_API DebugPrint {
public:
    /// `function`: the full name. It is not copied and must outlive the printer.
    DebugPrint(char const* function, DebugCode code)
        : debug_(Debug::getInstance()), function_(function), code_(code), enabled_(debug_.isEnabled(code)) {}
    DebugPrint(DebugPrint const&) = delete;
    DebugPrint& operator=(DebugPrint const&) = delete;
    ~DebugPrint() {
        if (printed_) leave();
    }

    /// Prints one line, formatted like `printf`.
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
