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
    for (char const* const value : {"value", static_cast<char const*>(nullptr)}) {
        set("NX_DEBUG", value);
        EXPECT_STREQ(env(EnvVar_Debug), value);
    }
    for (int const none : {-1, 14}) EXPECT_EQ(env(static_cast<EnvVarCode>(none)), nullptr);
}

TEST(Display, DerivesRadiiThatAnIntCanHoldFromItsResolution) {
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
}

}  // namespace
