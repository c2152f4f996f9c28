// Facts about the process, the display and the driver.
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
    char const* const names[] = {"NX_DEBUG",
                                 "NX_PLATFORM",
                                 "NX_MULTITOUCH",
                                 "NX_WANT_QT_TOOLBAR",
                                 "NX_PACKETFILE_DEBUG",
                                 "NX_NO_LOGO",
                                 "NX_DONT_START_MAXIMIZED",
                                 "NX_PERF_NUM_MESHES",
                                 "NX_DEFAULT_TOOL",
                                 "NX_MOUSE_CAMERA_TRANSITION",
                                 "NX_UNDO_LIMIT",
                                 "NX_UNDO_MEMORY_LIMIT",
                                 "NX_LUA_PATH",
                                 "NX_GRAPHICS"};
    for (int code = 0; code < 14; ++code) {
        for (char const* const value : {names[code], static_cast<char const*>(nullptr)}) {
            set(names[code], value);
            EXPECT_STREQ(env(static_cast<EnvVarCode>(code)), value);
        }
    }
    for (int const none : {-1, 14}) EXPECT_EQ(env(static_cast<EnvVarCode>(none)), nullptr);
}

TEST(Display, DerivesRadiiThatAnIntCanHoldFromItsResolution) {
    EXPECT_TRUE(getDisplayDPI() == 132 && getDisplayScale() == 1 && !isHighResolutionDisplay());
    EXPECT_DOUBLE_EQ(getMovingGestureThreshold(), 9.9);
    EXPECT_DOUBLE_EQ(getSkeletonHitTestRadius(), 39.6);
    constexpr int most = std::numeric_limits<int>::max();
    for (auto const& [dpi, radius] : {std::pair(264.0, 15), {-20, -1}, {1e300, most}, {NAN, 0}, {132, 7}}) {
        setDisplayDPI(dpi);
        EXPECT_EQ(getHitTestRadius(), radius);
    }
    setDisplayScale(1.25);
    EXPECT_TRUE(isHighResolutionDisplay());
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
    EXPECT_FALSE(canRunAdvancedOpenGL());
    setCanRunAdvancedOpenGL(true);
    EXPECT_TRUE(canRunAdvancedOpenGL());
}

TEST(Version, IsThatOfThisRelease) {
    EXPECT_EQ(getProductName() + " " + getVersionString(), "Quorvane 0.5.0");
    EXPECT_TRUE(getVersionMajor() == 0 && getVersionMinor() == 5 && getVersionRevision() == 0);
}

}  // namespace
