// Facts about the graphics driver, set by the host.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urString/CString.h"

namespace nxSupport {

// The host sets these after it has created a graphics context. Until then the texts are empty and advanced rendering is
// not allowed. The library does not query the driver. Main thread only.

[[nodiscard]] NX_API urString::CString const& getGLRenderer() noexcept;
[[nodiscard]] NX_API urString::CString const& getGLVendor() noexcept;
[[nodiscard]] NX_API urString::CString const& getGLVersion() noexcept;
[[nodiscard]] NX_API urString::CString const& getGLShadingVersion() noexcept;
/// Copies the text; null gives an empty text. The same holds for the other setters.
NX_API void setGLRenderer(char const* text);
NX_API void setGLVendor(char const* text);
NX_API void setGLVersion(char const* text);
NX_API void setGLShadingVersion(char const* text);

/// Whether the advanced rendering paths may be used.
[[nodiscard]] NX_API bool canRunAdvancedOpenGL() noexcept;
NX_API void setCanRunAdvancedOpenGL(bool allowed) noexcept;

}  // namespace nxSupport
