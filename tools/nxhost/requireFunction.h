// Checks that a script passed a function.
#pragma once

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Function.h"

namespace nxhost {

/// Raises if the function, the argument at `position` of `name`, was nil.
inline void requireFunction(bool given, char const* name, int position) {
    if (given) return;
    throw nxRFL::Exception(urString::CString::format("%s: argument %d must be function, but is null", name, position));
}

}  // namespace nxhost
