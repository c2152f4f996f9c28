// What scripts find in the global table `nx`, and their print.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"
#include "support/messaging/InitializeLuaMsg.h"

namespace nxSupport {

/// Equips the message's Lua state: puts the application's output behind `print`, and fills the global table `nx`, which
/// the host has made, with decodeJSON2, encodeJSON2, getObjectTableSize, random, setLCPropertyAssignmentHook and
/// createLCStack. Without that table it says so on the application output and leaves the state as it was.
NX_API void registerLuaFunctions(InitializeLuaMsg& message);

/// Declarations of the table `nx` for editors, to be put after `nxRFL::listing` in the format `luaStubs`.
[[nodiscard]] NX_API urString::CString luaFunctionStubs();

}  // namespace nxSupport
