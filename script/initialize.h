// The library's start-up.
#pragma once

#include "foundation/ur/Export.h"

namespace nxSupport {

/// Subscribes `registerLuaFunctions` and `registerReflection` to their messages, once for each broadcaster. Call it in
/// a context of a domain whose call information holds the broadcaster; without one it does nothing.
NX_API void initialize();

}  // namespace nxSupport
