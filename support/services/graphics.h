// What the host found out about the graphics driver.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace nxSupport {

// The host sets these once it has a graphics context; until then the texts are empty and nothing advanced may run.
// Nothing here asks the driver. Main thread only.

[[nodiscard]] NX_API urString::CString const& getGLRenderer() noexcept;
[[nodiscard]] NX_API urString::CString const& getGLVendor() noexcept;
[[nodiscard]] NX_API urString::CString const& getGLVersion() noexcept;
[[nodiscard]] NX_API urString::CString const& getGLShadingVersion() noexcept;
/// Copies the text; null is the empty text. The same for the others.
NX_API void setGLRenderer(char const* text);
NX_API void setGLVendor(char const* text);
NX_API void setGLVersion(char const* text);
NX_API void setGLShadingVersion(char const* text);

/// The advanced rendering paths may be used.
[[nodiscard]] NX_API bool canRunAdvancedOpenGL() noexcept;
NX_API void setCanRunAdvancedOpenGL(bool allowed) noexcept;

}  // namespace nxSupport
