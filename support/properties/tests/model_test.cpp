// Compares random calls on properties and their history with the model, including every notification.
#include <random>

#include "support/properties/tests/PropertyPlay.h"

namespace nxSupport::test {
namespace {

TEST(PropertyModel, AgreesWithThePropertiesAfterEveryStep) {
    constexpr unsigned plays = 400;
    constexpr unsigned stepsPerPlay = 250;
    for (unsigned seed = 1; seed <= plays; ++seed) {
        std::mt19937 random(seed);
        PropertyPlay both([&] { return static_cast<unsigned>(random()); });
        for (unsigned step = 0; step < stepsPerPlay; ++step) {
            std::string const difference = both.step();
            ASSERT_EQ(difference, "") << "seed " << seed << ", step " << step;
        }
    }
}

}  // namespace
}  // namespace nxSupport::test
