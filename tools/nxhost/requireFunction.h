// Checks that a script passed a function.
#pragma once

#include "foundation/nxRFL/Exception.h"
#include "foundation/nxRFL/Function.h"

namespace nxhost {

/// Raises if the function, an argument of `name`, was nil; `argument` is such as "2 (body)".
inline void requireFunction(bool given, char const* name, char const* argument) {
    if (given) return;
    throw nxRFL::Exception(urString::CString::format("%s: argument %s must be function, but is null", name, argument));
}

}  // namespace nxhost
