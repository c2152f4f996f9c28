// Tests errors and random numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <type_traits>

#include "foundation/urUtil/Error.h"
#include "foundation/urUtil/random.h"

namespace {

using urUtil::Error;
static_assert(!std::is_constructible_v<bool, Error>);

TEST(Error, IsAFailureWithAnyCodeAndSaysWhatTheSystemSays) {
    EXPECT_TRUE(Error().ok());
    EXPECT_EQ(Error().message(), "");
    EXPECT_TRUE(Error(0, "no code fits").isError());
    Error const system = Error::fromSystem(ENOENT, "page file");
    EXPECT_EQ(system.code(), ENOENT);
    EXPECT_TRUE(system.message().starts_with("page file: ")) << system.message();
}

TEST(Random, NeverGivesTheEndOfItsRange) {
    constexpr double huge = std::numeric_limits<double>::max(), denormal = std::numeric_limits<double>::denorm_min();
    constexpr double ranges[][2] = {{0, denormal}, {1, 1.5}, {5, -3}, {-huge, huge}};
    for (int i = 0; i < 4000; ++i) {
        auto const [a, b] = ranges[i % 4];
        double const value = urUtil::random(a, b);
        EXPECT_NE(value, b);
        ASSERT_EQ(std::clamp(value, std::min(a, b), std::max(a, b)), value);
    }
    EXPECT_EQ(urUtil::random(7, 7), 7);
}

TEST(Random, IsUniformAndRepeatsAfterTheSameSeed) {
    int bins[2][10] = {};
    for (auto& counts : bins) {
        urUtil::seedRandom(11);
        for (int i = 0; i < 100000; ++i) ++counts[static_cast<int>(urUtil::random(10))];
    }
    for (int i = 0; i < 10; ++i) {
        EXPECT_NEAR(bins[0][i], 10000, 400);  // four standard deviations
        EXPECT_EQ(bins[0][i], bins[1][i]);
    }
}

}  // namespace
