// The product's name and version.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace nxSupport {

[[nodiscard]] NX_API urString::CString getProductName();

[[nodiscard]] NX_API int getVersionMajor() noexcept;
[[nodiscard]] NX_API int getVersionMinor() noexcept;
[[nodiscard]] NX_API int getVersionRevision() noexcept;
/// The three numbers, separated by points.
[[nodiscard]] NX_API urString::CString getVersionString();

}  // namespace nxSupport
