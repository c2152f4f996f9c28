// Names of plain functions, for diagnosis.
#pragma once

#include <string>

#include "foundation/ur/Export.h"

namespace ur {

/// The function's name in source form, if its program exports it; otherwise the program or library and the offset in
/// it, as "libTool.so+0x1b30", which debuggers resolve; otherwise the address.
[[nodiscard]] NX_API std::string functionName(void (*function)());

}  // namespace ur
