// Tests suggestions for misspelt names.
#include <gtest/gtest.h>

#include "foundation/urString/NearestName.h"

namespace {

std::string meant(std::string_view wanted) {
    urString::NearestName nearest(wanted);
    for (char const* name : {"weight", "height", "w", "depth", "id"}) nearest.offer(name);
    return std::string(nearest.get());
}

TEST(NearestNames, DifferInOnePlaceOrAThirdAndAreTheFirstOfTheNearest) {
    EXPECT_EQ(meant("weight"), "weight");
    EXPECT_EQ(meant("wieght"), "weight");
    EXPECT_EQ(meant("eight"), "weight");
    EXPECT_EQ(meant("heigth"), "height");
    EXPECT_EQ(meant("dept"), "depth");
    EXPECT_EQ(meant("di"), "id");
    EXPECT_EQ(meant("i"), "w") << "the first at a distance of one";
    EXPECT_EQ(meant("di!"), "") << "two differences in three bytes";
    EXPECT_EQ(meant("edpht"), "") << "two exchanges";
    EXPECT_EQ(meant("ewihgt"), "weight") << "two exchanges in six bytes";
    EXPECT_EQ(meant("colour"), "");
    EXPECT_EQ(meant(""), "");
    EXPECT_EQ(urString::NearestName("x").question(), "");

    std::string const longName(200, 'n');
    urString::NearestName nearest(longName + "x");
    nearest.offer(longName);
    EXPECT_EQ(nearest.question(), "; do you mean " + longName + "?");
}

}  // namespace
