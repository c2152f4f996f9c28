// Facts about the process, the display, the driver and the product.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>

#include "support/services/display.h"
#include "support/services/env.h"
#include "support/services/fontsPath.h"
#include "support/services/graphics.h"
#include "support/services/version.h"

namespace {

using namespace nxSupport;

/// Null removes the variable.
void set(char const* name, char const* value) {
#if defined(_WIN32)
    ::_putenv_s(name, value ? value : "");
#else
    value ? ::setenv(name, value, 1) : ::unsetenv(name);
#endif
}

TEST(Env, ReadsEachVariableWhenAsked) {
    for (auto const& [code, name] :
         {std::pair(EnvVar_Debug, "NX_DEBUG"), {EnvVar_NoLogo, "NX_NO_LOGO"}, {EnvVar_Graphics, "NX_GRAPHICS"}}) {
        set(name, "value");
        EXPECT_STREQ(env(code), "value");
        set(name, nullptr);
        EXPECT_EQ(env(code), nullptr);
    }
    for (int const none : {-1, 14}) EXPECT_EQ(env(static_cast<EnvVarCode>(none)), nullptr);
}

TEST(Display, DerivesTolerancesFromItsResolutionOnly) {
    EXPECT_TRUE(getDisplayDPI() == 132 && !isHighResolutionDisplay());
    setDisplayScale(1.25);
    EXPECT_TRUE(isHighResolutionDisplay());
    EXPECT_DOUBLE_EQ(getMovingGestureThreshold(), 9.9);
    EXPECT_DOUBLE_EQ(getSkeletonHitTestRadius(), 39.6);
    constexpr int most = std::numeric_limits<int>::max();
    for (auto const& [dpi, radius] : {std::pair(264.0, 15), {-20, -1}, {1e300, most}, {NAN, 0}, {132, 7}}) {
        setDisplayDPI(dpi);
        EXPECT_EQ(getHitTestRadius(), radius);
    }
}

TEST(FontsPath, IsAFolderWhereTheSystemHasOne) {
    urString::CString const path = getFontsPath().asMultibyte();
    EXPECT_TRUE(path.empty() || std::filesystem::is_directory(path.c_str()));
}

TEST(Graphics, KeepsCopiesOfWhatTheHostFound) {
    std::string text = "renderer";
    setGLRenderer(text.c_str());
    text[0] = '?';
    setGLVendor("vendor");
    setGLVersion("version");
    setGLShadingVersion("shading");
    EXPECT_EQ(getGLRenderer() + getGLVendor() + getGLVersion() + getGLShadingVersion(), "renderervendorversionshading");
    setGLVendor(nullptr);
    EXPECT_TRUE(getGLVendor().empty() && !canRunAdvancedOpenGL());
    setCanRunAdvancedOpenGL(true);
    EXPECT_TRUE(canRunAdvancedOpenGL());
}

TEST(Version, IsOneTextOfItsNumbers) {
    EXPECT_EQ(getVersionString(), std::to_string(getVersionMajor()) + "." + std::to_string(getVersionMinor()) + "." +
                                      std::to_string(getVersionRevision()));
}

}  // namespace
