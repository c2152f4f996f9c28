// Switching debug codes by a text that a user has written, as in an environment variable.
#pragma once

#include <string_view>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urString/CString.h"
#include "support/services/DebugCode.h"

namespace nxSupport {

/// An entry of a list that is neither the name nor the number of a code.
struct NX_API UnknownDebugCode {
    urString::CString entry;  ///< as it stands in the list, without the `-` and the blanks around it
    DebugCode nearest;        ///< the code that was probably meant, `NUM_CODES` when no name is like the entry

    /// One line for the user, such as "there is no Debug_Undoo; do you mean Debug_Undo?".
    [[nodiscard]] urString::CString message() const;
};

/// Switches codes by entries separated by commas: a code's name or number, or `*` for all codes, switched on, or off
/// with a `-` before it. Entries take effect from left to right, so that `*,-Debug_Undo` leaves one off; blanks
/// around them do not count and empty ones are skipped. Gives the entries that name no code, which have no effect.
NX_API ur::vector<UnknownDebugCode> switchDebugCodes(std::string_view list);

}  // namespace nxSupport
