// Random calls on properties and their history beside the model, every notification compared.
#include <cstdlib>
#include <random>

#include "support/properties/tests/PropertyPlay.h"

namespace nxSupport::test {
namespace {

// NX_PROPERTY_STEPS and NX_PROPERTY_SEED prolong and replay the play.
unsigned fromEnvironment(char const* name, unsigned otherwise) {
    char const* const text = std::getenv(name);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

TEST(PropertyModel, AgreesWithThePropertiesAfterEveryStep) {
    unsigned const seed = fromEnvironment("NX_PROPERTY_SEED", 1);
    unsigned const steps = fromEnvironment("NX_PROPERTY_STEPS", 100'000);
    constexpr unsigned stepsPerPlay = 250;
    for (unsigned play = 0; play * stepsPerPlay < steps; ++play) {
        std::mt19937 random(seed + play);
        PropertyPlay both([&] { return static_cast<unsigned>(random()); });
        for (unsigned step = 0; step < stepsPerPlay; ++step) {
            std::string const difference = both.step();
            ASSERT_EQ(difference, "") << "NX_PROPERTY_SEED=" << seed + play << ", step " << step;
        }
    }
}

}  // namespace
}  // namespace nxSupport::test
