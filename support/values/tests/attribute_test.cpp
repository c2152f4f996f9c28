// Ramps and sines over a leaf that the test sets.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/values/RampAttr.h"
#include "support/values/SineAttr.h"

namespace {

using nxSupport::Attribute;
using nxSupport::RampAttr;
using nxSupport::SineAttr;

class Leaf : public Attribute<double> {
public:
    [[nodiscard]] bool dynamic() const override { return moving; }
    [[nodiscard]] double evaluate() const override { return value; }

    double value = 0;
    bool moving = false;
};

class Attributes : public ::testing::Test {
protected:
    double at(Attribute<double> const& attribute, double input) {
        leaf->value = input;
        return attribute.evaluate();
    }

    ur::Reference<Leaf> leaf = ur::make<Leaf>();
};

TEST_F(Attributes, RampIsLevelOutsideItsEndsAndStraightBetween) {
    auto const unit = ur::make<RampAttr>(leaf, 10.0, 20.0);
    EXPECT_EQ(at(*unit, -1), 10);
    EXPECT_EQ(at(*unit, 0.5), 15);
    EXPECT_EQ(at(*unit, 1), 20);
    EXPECT_EQ(at(*unit, 2), 20);
    auto const falling = ur::make<RampAttr>(leaf, 1.0, 100.0, 3.0, 0.0);
    EXPECT_EQ(at(*falling, 0), 100);
    EXPECT_EQ(at(*falling, 2), 50);
    EXPECT_EQ(at(*falling, 4), 0);
}

TEST_F(Attributes, RampNeverLeavesItsOutputsByRounding) {
    auto const level = ur::make<RampAttr>(leaf, 0.1, 0.1);
    auto const falling = ur::make<RampAttr>(leaf, 0.7, 0.7 - 1e-16);
    for (int step = 0; step <= 1000; ++step) {
        EXPECT_EQ(at(*level, step / 1000.0), 0.1);
        EXPECT_LE(at(*falling, step / 1000.0), 0.7);
    }
}

TEST_F(Attributes, RampWithoutWidthIsUndefinedOnlyAtItsInput) {
    auto const step = ur::make<RampAttr>(leaf, 2.0, 5.0, 2.0, 6.0);
    EXPECT_EQ(at(*step, 1.9), 5);
    EXPECT_EQ(at(*step, 2.1), 6);
    EXPECT_TRUE(std::isnan(at(*step, 2)));
    EXPECT_TRUE(std::isnan(at(*ur::make<RampAttr>(leaf, 0.0, 1.0), std::numeric_limits<double>::quiet_NaN())));
}

TEST_F(Attributes, SineEasesBetweenItsValuesAndSwingsBack) {
    auto const sine = ur::make<SineAttr>(leaf, 0.0, 10.0);
    EXPECT_EQ(at(*sine, 0), 0);
    EXPECT_DOUBLE_EQ(at(*sine, 0.5), 5);
    EXPECT_EQ(at(*sine, 1), 10);
    EXPECT_DOUBLE_EQ(at(*sine, 1.5), 5);
    EXPECT_NEAR(at(*sine, 2), 0, 1e-15);
    EXPECT_LT(at(*sine, 0.1), 0.5);
}

TEST_F(Attributes, ChainsAnswerForTheirLeafAndKeepItAlive) {
    ur::Reference<Attribute<double>> chain = ur::make<RampAttr>(ur::make<SineAttr>(leaf, 0.0, 1.0), 0.0, 100.0);
    EXPECT_FALSE(chain->dynamic());
    leaf->moving = true;
    EXPECT_TRUE(chain->dynamic());
    Leaf* const kept = leaf.get();
    leaf.reset();
    EXPECT_EQ(kept->referenceCount(), 1);
    EXPECT_DOUBLE_EQ(chain->evaluate(), 0);
}

}  // namespace
