// Facts about the process, the display, the driver and the product.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <sstream>
#include <string>

#include "support/services/display.h"
#include "support/services/env.h"
#include "support/services/fontsPath.h"
#include "support/services/graphics.h"
#include "support/services/version.h"

namespace {

using namespace nxSupport;

TEST(Env, ReadsEachVariableWhenAsked) {
    std::istringstream names(
        "NX_DEBUG NX_PLATFORM NX_MULTITOUCH NX_WANT_QT_TOOLBAR NX_PACKETFILE_DEBUG NX_NO_LOGO NX_DONT_START_MAXIMIZED "
        "NX_PERF_NUM_MESHES NX_DEFAULT_TOOL NX_MOUSE_CAMERA_TRANSITION NX_UNDO_LIMIT NX_UNDO_MEMORY_LIMIT NX_LUA_PATH "
        "NX_GRAPHICS");
    int code = 0;
    for (std::string name; names >> name; ++code) {
        ::setenv(name.c_str(), name.c_str(), 1);
        EXPECT_EQ(env(static_cast<EnvVarCode>(code)), name);
        ::unsetenv(name.c_str());
        EXPECT_EQ(env(static_cast<EnvVarCode>(code)), nullptr);
    }
    for (int const none : {-1, 14, std::numeric_limits<int>::max()})
        EXPECT_EQ(env(static_cast<EnvVarCode>(none)), nullptr);
}

TEST(Display, DerivesTolerancesFromItsResolutionOnly) {
    EXPECT_EQ(getDisplayDPI(), 132.0);
    EXPECT_EQ(getHitTestRadius(), 7);
    EXPECT_DOUBLE_EQ(getMovingGestureThreshold(), 9.9);
    EXPECT_DOUBLE_EQ(getSkeletonHitTestRadius(), 39.6);
    setDisplayDPI(264);
    for (double const scale : {1.25, 0.5, 1.0}) {
        setDisplayScale(scale);
        EXPECT_EQ(isHighResolutionDisplay(), scale > 1);
    }
    setDisplayScale(2);
    EXPECT_EQ(getHitTestRadius(), 15);
    EXPECT_DOUBLE_EQ(getMovingGestureThreshold(), 19.8);
    for (auto const& [dpi, radius] : {std::pair(-20.0, -1), {1e300, std::numeric_limits<int>::max()}, {NAN, 0}}) {
        setDisplayDPI(dpi);
        EXPECT_EQ(getHitTestRadius(), radius);
    }
    setDisplayDPI(132);
}

TEST(FontsPath, IsAFolderWhereTheSystemHasOne) {
    urString::CString const path = getFontsPath().asMultibyte();
    EXPECT_TRUE(path.empty() || std::filesystem::is_directory(path.c_str()));
}

TEST(Graphics, KeepsCopiesOfWhatTheHostFound) {
    EXPECT_FALSE(canRunAdvancedOpenGL());
    EXPECT_EQ(getGLRenderer() + getGLVendor() + getGLVersion() + getGLShadingVersion(), "");
    std::string text = "renderer";
    setGLRenderer(text.c_str());
    text[0] = '?';
    setGLVendor("vendor");
    setGLVersion("version");
    setGLShadingVersion("shading");
    setCanRunAdvancedOpenGL(true);
    EXPECT_EQ(getGLRenderer() + getGLVendor() + getGLVersion() + getGLShadingVersion(), "renderervendorversionshading");
    EXPECT_TRUE(canRunAdvancedOpenGL());
    setGLVendor(nullptr);
    EXPECT_EQ(getGLVendor(), "");
}

TEST(Version, IsOneTextOfItsNumbers) {
    EXPECT_EQ(getVersionString(), std::to_string(getVersionMajor()) + "." + std::to_string(getVersionMinor()) + "." +
                                      std::to_string(getVersionRevision()));
    EXPECT_EQ(getProductName(), "Quorvane");
}

}  // namespace
