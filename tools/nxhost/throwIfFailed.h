// Raises the errors of files in scripts.
#pragma once

#include "foundation/nxRFL/Exception.h"
#include "foundation/urUtil/Error.h"

namespace nxhost {

inline void throwIfFailed(urUtil::Error const& error) {
    if (error.isError()) throw nxRFL::Exception(urString::CString(error.message()));
}

}  // namespace nxhost
