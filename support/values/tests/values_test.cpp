// Bounded values and lengths.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/values/BoundedDouble.h"
#include "support/values/BoundedInt.h"
#include "support/values/Length.h"

namespace {

using namespace nxSupport;
using namespace nxSupport::Units;

TEST(BoundedValues, NeverClampAndStartWithAnEmptyRange) {
    BoundedDouble number(5, 8, 9);
    BoundedInt whole(5, 8, 9);
    EXPECT_TRUE(number == 5 && whole == 5);
    number.setRange(urLinear::Range1d(1, 2));
    whole.setMinMax(1, 2);
    EXPECT_TRUE(number == 5 && whole == 5);
    EXPECT_GT(BoundedDouble(7).minValue(), BoundedDouble(7).maxValue());
    EXPECT_GT(BoundedInt(7).minValue(), BoundedInt(7).maxValue());
}

TEST(BoundedDouble, TellsWhereAValueLiesInTheRange) {
    BoundedDouble const value(0.25, 0.0, 2.0);
    EXPECT_EQ(value.fractionalValue(), 0.125);
    EXPECT_EQ(value.fractionalValue(2.0), 1.0);
    EXPECT_EQ(BoundedDouble(7.0).fractionalValue(3.0), -2.0);
    EXPECT_TRUE(std::isnan(BoundedDouble(1.0, 1.0, 1.0).fractionalValue()));
}

TEST(Length, ConvertsBetweenEveryPairOfUnits) {
    EXPECT_DOUBLE_EQ(Length(Length(1, Inches), Millimeters).value(), 25.4);
    EXPECT_DOUBLE_EQ(Length(Length(1, Miles), Feet).value(), 5280.0);
    EXPECT_DOUBLE_EQ(Length(Length(72, Points), Inches).value(), 1.0);
    EXPECT_DOUBLE_EQ(Length(Length(1, Kilometers), Centimeters).value(), 100000.0);
    EXPECT_DOUBLE_EQ(Length(Length(1, Yards), Meters).value(), 0.9144);
    EXPECT_EQ(Length(Length(0.1, Points), Points).value(), 0.1);
}

TEST(Length, ComparesWithinATolerance) {
    Length const metre(1, Meters), nan(std::numeric_limits<double>::quiet_NaN(), Meters);
    EXPECT_TRUE(equivalent(metre, Length(1000.4, Millimeters), Length(0.5, Millimeters)));
    EXPECT_FALSE(equivalent(metre, Length(1000.4, Millimeters), Length(0.3, Millimeters)));
    EXPECT_TRUE(equivalent(Length(3, Millimeters), Length(5, Millimeters), Length(2, Millimeters)));
    EXPECT_FALSE(equivalent(metre, nan, metre));
    // Relative to the larger length.
    EXPECT_TRUE(equivalent(Length(0, Meters), Length(0, Feet), 0.0));
    EXPECT_FALSE(equivalent(metre, Length(0, Meters), 1.0));
    EXPECT_TRUE(equivalent(metre, Length(0, Meters), 1.01));
    EXPECT_TRUE(equivalent(Length(1, Inches), Length(25.5, Millimeters), 0.01));
}

}  // namespace
