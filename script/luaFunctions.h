// The functions of the global table `nx`, and scripts' print.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"
#include "support/messaging/InitializeLuaMsg.h"

namespace nxSupport {

/// Prepares the message's Lua state: makes `print` write to the application output, and fills the global table `nx`,
/// which the host has created, with decodeJSON2, encodeJSON2, getObjectTableSize, random, setLCPropertyAssignmentHook
/// and createLCStack. Without that table it reports this on the application output and leaves the state unchanged.
NX_API void registerLuaFunctions(InitializeLuaMsg& message);

/// The table `nx` for people, to be appended to `nxRFL::listing` in the format `text`.
[[nodiscard]] NX_API urString::CString luaFunctionListing();
/// The table `nx` as JSON, an element of "tables" of `nxRFL::listing` in the format `json`.
[[nodiscard]] NX_API urString::CString luaFunctionJson();
/// Declarations of the table `nx` for editors, to be appended to `nxRFL::listing` in the format `luaStubs`.
[[nodiscard]] NX_API urString::CString luaFunctionStubs();

}  // namespace nxSupport
