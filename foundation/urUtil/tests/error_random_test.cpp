// Errors and random numbers.
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

TEST(Error, SucceedsUnlessBuiltAsAFailure) {
    EXPECT_TRUE(Error().ok() && !Error().isError() && Error().code() == 0 && Error().message().empty());
    Error const failure(0, "no code fits");
    EXPECT_TRUE(failure.isError() && failure.message() == "no code fits");
    Error const system = Error::fromSystem(ENOENT, "page file");
    EXPECT_TRUE(system.code() == ENOENT && system.message().starts_with("page file: ")) << system.message();
}

TEST(Random, NeverGivesTheEndOfItsRange) {
    double const huge = std::numeric_limits<double>::max();
    double const least = std::numeric_limits<double>::denorm_min();
    for (auto const& [a, b] : std::vector<std::pair<double, double>>{{0, least}, {1, 1.5}, {5, -3}, {-huge, huge}}) {
        for (int i = 0; i < 1000; ++i) {
            double const value = urUtil::random(a, b);
            ASSERT_TRUE(a < b ? a <= value && value < b : b < value && value <= a) << a << ' ' << b << ' ' << value;
        }
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
