// Tests suggestions for misspelt names.
#include <gtest/gtest.h>

#include "foundation/urString/NearestName.h"

namespace {

std::string meant(std::string_view wanted) {
    urString::NearestName nearest(wanted);
    for (char const* name : {"weight", "height", "w", "depth"}) nearest.offer(name);
    return std::string(nearest.get());
}

TEST(NearestNames, DifferInAtMostAThirdAndAreTheFirstOfTheNearest) {
    EXPECT_EQ(meant("weight"), "weight");
    EXPECT_EQ(meant("wieght"), "weight");
    EXPECT_EQ(meant("eight"), "weight");
    EXPECT_EQ(meant("heigth"), "height");
    EXPECT_EQ(meant("dept"), "depth");
    EXPECT_EQ(meant("colour"), "");
    EXPECT_EQ(meant(""), "");
    EXPECT_EQ(urString::NearestName("x").question(), "");

    std::string const longName(200, 'n');
    urString::NearestName nearest(longName + "x");
    nearest.offer(longName);
    EXPECT_EQ(nearest.question(), "; do you mean " + longName + "?");
}

}  // namespace
