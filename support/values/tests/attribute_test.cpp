// Ramps and sines of an attribute that the test sets.
#include <gtest/gtest.h>

#include <cmath>

#include "support/values/RampAttr.h"
#include "support/values/SineAttr.h"

namespace {

using namespace nxSupport;

struct Leaf : Attribute<double> {
    [[nodiscard]] bool dynamic() const override { return moving; }
    [[nodiscard]] double evaluate() const override { return value; }

    double value = 0;
    bool moving = false;
};

struct Attributes : testing::Test {
    double at(Attribute<double> const& attribute, double input) {
        leaf->value = input;
        return attribute.evaluate();
    }

    ur::Reference<Leaf> leaf = ur::make<Leaf>();
};

TEST_F(Attributes, RampIsLevelOutsideItsEndsAndStraightBetween) {
    RampAttr const unit(leaf, 10, 20), falling(leaf, 1, 100, 3, 0), step(leaf, 2, 5, 2, 6);
    EXPECT_EQ(at(unit, -1), 10);
    EXPECT_EQ(at(unit, 0.5), 15);
    EXPECT_EQ(at(unit, 2), 20);
    EXPECT_EQ(at(falling, 0), 100);
    EXPECT_EQ(at(falling, 2), 50);
    EXPECT_EQ(at(falling, 4), 0);
    EXPECT_EQ(at(step, 1.9), 5);
    EXPECT_EQ(at(step, 2.1), 6);
    EXPECT_TRUE(std::isnan(at(step, 2)));
}

TEST_F(Attributes, RampNeverLeavesItsOutputsByRounding) {
    RampAttr const level(leaf, 0.1, 0.1);
    for (int i = 0; i <= 1000; ++i) EXPECT_EQ(at(level, i / 1000.0), 0.1);
}

TEST_F(Attributes, SineEasesBetweenItsValuesAndSwingsBack) {
    SineAttr const sine(leaf, 0, 10);
    double const eased[] = {0, 5, 10, 5, 0};
    for (int i = 0; i < 5; ++i) EXPECT_NEAR(at(sine, 0.5 * i), eased[i], 1e-14);
    EXPECT_LT(at(sine, 0.1), 0.5);
}

TEST_F(Attributes, ChainsAnswerForTheirLeafAndKeepItAlive) {
    RampAttr const chain(ur::make<SineAttr>(leaf, 0, 1), 0, 100);
    EXPECT_FALSE(chain.dynamic());
    leaf->moving = true;
    EXPECT_TRUE(chain.dynamic());
    leaf.reset();
    EXPECT_EQ(chain.evaluate(), 0);
}

}  // namespace
