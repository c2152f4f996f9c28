// Tests colours: byte steps, hue and lightness.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

#include "foundation/urUtil/HSL.h"

namespace {

using urUtil::Color;
using urUtil::Color8;
using urUtil::HSL;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float least = std::numeric_limits<float>::denorm_min();

TEST(Color, BytesAreTheNearestStepAndTheEndsOutside) {
    EXPECT_EQ(Color8(Color(0.5F, 0.4999F, 1.0F / 255, 0.9F / 510)), Color8(128, 127, 1, 0));
    EXPECT_EQ(Color8(Color(-1, 2, nan, infinity)), Color8(0, 255, 0, 255));
}

template <class C>
void expectOrder(C const& counted, C const& black, int size) {
    C value;
    EXPECT_EQ(value, black);
    for (int i = 0; i < size; ++i) {
        EXPECT_EQ(counted[i], i + 1);
        value[i] = counted[i];
    }
    EXPECT_EQ(value, counted);
}

TEST(Color, HasItsComponentsInOrder) {
    expectOrder(Color(1, 2, 3, 4), Color(0, 0, 0, 1), 4);
    expectOrder(Color8(1, 2, 3, 4), Color8(0, 0, 0, 255), 4);
    expectOrder(HSL(1, 2, 3), HSL(0, 0, 0), 3);
}

TEST(HSL, EveryColorOfAGridSurvivesTheRoundTripAndKeepsItsOpacity) {
    for (int i = 0; i < 52 * 52 * 52; ++i) {
        auto const step = [&](int divisor) { return static_cast<unsigned char>(i / divisor % 52 * 5); };
        Color8 const original(step(1), step(52), step(52 * 52), 77);
        Color color(0, 0, 0, Color(original).a);
        urUtil::HSLtoRGB(urUtil::RGBtoHSL(Color(original)), color);
        ASSERT_EQ(Color8(color), original);
    }
}

TEST(HSL, NamesTheKnownColorsAndStaysInRange) {
    std::pair<Color, HSL> const names[] = {
        {{0, 1, 0}, {1 / 3.0F, 1, 0.5F}},
        {{1, 0, 1}, {5 / 6.0F, 1, 0.5F}},
        {{0.75F, 0.25F, 0.25F}, {0, 0.5F, 0.5F}},
        {{0.5F, 0.5F, 0.5F}, {0, 0, 0.5F}},
        {{3, -1, nan}, {0, 1, 0.5F}},
        {{least, 0, 0}, {0, 1, 0}},
        {{std::nextafter(1.0F, 0.0F), 1, 1}, {0.5F, 1, 1}},
    };
    for (auto const& [color, hsl] : names) {
        HSL const result = urUtil::RGBtoHSL(color);
        for (int i = 0; i < 3; ++i) EXPECT_FLOAT_EQ(result[i], hsl[i]) << color.r << ' ' << color.g << ' ' << color.b;
    }
    std::pair<HSL, Color8> const outside[] = {{{-2 / 3.0F, 5, 0.5F}, Color8(0, 255, 0)},
                                              {{nan, -1, nan}, Color8(0, 0, 0)},
                                              {{infinity, infinity, 0.5F}, Color8(255, 0, 0)}};
    for (auto const& [hsl, expected] : outside) {
        Color color;
        urUtil::HSLtoRGB(hsl, color);
        EXPECT_EQ(Color8(color), expected) << hsl.h;
    }
}

}  // namespace
