// Tests errors and random numbers.
#include <gtest/gtest.h>

#include <cerrno>
#include <cmath>
#include <limits>
#include <type_traits>

#include "foundation/urUtil/Error.h"
#include "foundation/urUtil/random.h"

namespace {

using urUtil::Error;
static_assert(!std::is_constructible_v<bool, Error>);

TEST(Error, IsAFailureWithAnyCodeAndSaysWhatTheSystemSays) {
    EXPECT_TRUE(Error().ok() && Error().code() == 0 && Error().message().empty());
    EXPECT_TRUE(Error(0, "no code fits").isError());
    Error const system = Error::fromSystem(ENOENT, "page file");
    EXPECT_TRUE(system.code() == ENOENT && system.message().starts_with("page file: ")) << system.message();
}

TEST(Random, NeverGivesTheEndOfItsRange) {
    constexpr double huge = std::numeric_limits<double>::max(), denormal = std::numeric_limits<double>::denorm_min();
    constexpr double ranges[][2] = {{0, denormal}, {1, 1.5}, {5, -3}, {-huge, huge}};
    for (int i = 0; i < 4000; ++i) {
        auto const [a, b] = ranges[i % 4];
        double const value = urUtil::random(a, b);
        ASSERT_TRUE(a < b ? a <= value && value < b : b < value && value <= a) << a << ' ' << b << ' ' << value;
    }
    EXPECT_EQ(urUtil::random(7, 7), 7);
}

TEST(Random, IsUniformAndRepeatsAfterTheSameSeed) {
    constexpr double draws = 100000;
    double chiSquared[2] = {};
    for (double& result : chiSquared) {
        urUtil::seedRandom(11);
        int bins[10] = {};
        for (int i = 0; i < draws; ++i) ++bins[static_cast<int>(urUtil::random(10))];
        for (int bin : bins) result += std::pow(bin - draws / 10, 2) / (draws / 10);
    }
    EXPECT_LT(chiSquared[0], 27.9) << "one in a thousand for nine degrees of freedom";
    EXPECT_EQ(chiSquared[0], chiSquared[1]);
}

}  // namespace
