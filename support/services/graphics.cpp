// Facts about the graphics driver.
#include "support/services/graphics.h"

namespace nxSupport {

using urString::CString;

namespace {

constinit CString renderer;
constinit CString vendor;
constinit CString version;
constinit CString shadingVersion;
bool advancedAllowed = false;

}  // namespace

CString const& getGLRenderer() noexcept { return renderer; }
CString const& getGLVendor() noexcept { return vendor; }
CString const& getGLVersion() noexcept { return version; }
CString const& getGLShadingVersion() noexcept { return shadingVersion; }
void setGLRenderer(char const* text) { renderer = text; }
void setGLVendor(char const* text) { vendor = text; }
void setGLVersion(char const* text) { version = text; }
void setGLShadingVersion(char const* text) { shadingVersion = text; }

bool canRunAdvancedOpenGL() noexcept { return advancedAllowed; }
void setCanRunAdvancedOpenGL(bool allowed) noexcept { advancedAllowed = allowed; }

}  // namespace nxSupport
