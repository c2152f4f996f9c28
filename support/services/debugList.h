// Switches debug codes by a user's text, such as the value of an environment variable.
#pragma once

#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "support/services/DebugCode.h"

namespace nxSupport {

/// An entry of a list that is neither the name nor the number of a code.
struct NX_API UnknownDebugCode {
    urString::CString entry;  ///< as in the list, without the `-` and the blanks around it
    DebugCode nearest;        ///< the most similar code; `NUM_CODES` if no name is similar

    /// One line for the user, such as "there is no Debug_Undoo; do you mean Debug_Undo?".
    [[nodiscard]] urString::CString message() const;
};

/// Switches codes by a comma-separated list. An entry is a code's name or number, or `*` for all codes. It switches the
/// code on, or off if `-` precedes it. Entries take effect from left to right, so `*,-Debug_Undo` switches on all but
/// one. Blanks around entries and empty entries are ignored. Returns the entries that name no code.
NX_API ur::vector<UnknownDebugCode> switchDebugCodes(std::string_view list);

}  // namespace nxSupport
