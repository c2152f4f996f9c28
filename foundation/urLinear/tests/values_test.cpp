// Tests vectors, normals, lines, planes and ranges.
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

#include "foundation/urLinear/Plane.h"
#include "foundation/urLinear/Range1d.h"
#include "foundation/urLinear/Range3d.h"
#include "foundation/urLinear/tests/eigenValues.h"

namespace urLinear {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double least = std::numeric_limits<double>::denorm_min();

template <class A, class B>
concept Comparable = requires(A a, B b) {
    a == b;
};
static_assert(!Comparable<Point, Vector> && !std::is_convertible_v<Point, Vector>);
static_assert(std::is_trivially_copyable_v<AffineMatrix> && std::is_trivially_copyable_v<ParamPlane>);
static_assert(Vector(1, 0, 0).cross({0, 1, 0}) == Vector(0, 0, 1) && Vector2(1, 0).cross({0, 1}) == 1);
static_assert(Point(4, 5, 6) - Point(1, 1, 1) == Vector(3, 4, 5) &&
              VectorFlt(Vector(1, 2, 3)) * 2 == VectorFlt(2, 4, 6));

TEST(Vector, HasALengthAndADirectionAtEveryMagnitude) {
    for (double size : {1.0, 1e200, 1e-200, 1e-310}) {
        Vector const v(3 * size, 0, -4 * size);
        EXPECT_NEAR(v.length() / (5 * size), 1, 1e-12) << size;
        EXPECT_TRUE(equivalent(v.normalized(), Vector(0.6, 0, -0.8))) << size;
    }
    EXPECT_NEAR(Vector(least, least, 0).normalized().length(), 1, 1e-15);
    for (Vector const& v : {Vector(), Vector(nan, 1, 0), Vector(0, HUGE_VAL, 1)}) EXPECT_EQ(v.normalized(), Vector());
}

TEST(Normal, SettingItAgainChangesNoBit) {
    Draw draw(7);
    for (int i = 0; i < 20000; ++i) {
        Normal const n = draw.normal();
        NormalFlt const flt(VectorFlt(draw.vector()));
        ASSERT_TRUE(Normal(n.vector()) == n && NormalFlt(flt.x(), flt.y(), flt.z()) == flt) << i;
        ASSERT_NEAR(n.vector().length(), 1, 1e-15);
    }
}

TEST(Normal, NormalizesUnlessPromisedAndIsZeroWithoutDirection) {
    EXPECT_EQ(Normal().vector(), Vector(0, 0, 1));
    EXPECT_EQ(Normal2(0, -5).vector(), Vector2(0, -1));
    EXPECT_EQ(Normal(0, 2, 0, NormalPromise::unitLength).vector(), Vector(0, 2, 0));
    EXPECT_EQ(Normal(nan, 1, 0).vector(), Vector());
    EXPECT_EQ(-Normal(least, 0, 0), Normal(-1, 0, 0));
}

TEST(Equivalent, ComparesEachComponentInclusively) {
    EXPECT_TRUE(equivalent(Point(1, 2, 3), Point(1.5, 1.5, 3), 0.5));
    EXPECT_FALSE(equivalent(Point(1, 2, 3), Point(1, 2, 3.6), 0.5) || equivalent(nan, nan, 1));
    EXPECT_FALSE(equivalent(Quaternion(0, 0, 0, 1), Quaternion(0, 0, 0, 1.6), 0.5));
    EXPECT_FALSE(equivalent(Range1d(0, 1), Range1d(0, 1.6), 0.5));
    EXPECT_FALSE(equivalent(Range3d({0, 0, 0}, {1, 1, 1}), Range3d({0, 0, 0}, {1, 1, 1.6}), 0.5));
    EXPECT_TRUE(equivalent(AffineMatrix(1), AffineMatrix(1 + epsilonTol / 2)));
    EXPECT_FALSE(equivalent(AffineMatrix(), AffineMatrix().translate({0, 0, 2 * epsilonTol})));
}

TEST(LinesAndPlanes, ProjectAndParametrize) {
    EXPECT_EQ(Line({1, 1, 0}, {0, 0, 3}).project({7, 8, 9}), Point(1, 1, 9));
    Plane const plane({0, 0, 2}, {0, 0, 1});
    EXPECT_EQ(plane.distance({5, 5, -1}), -3);
    EXPECT_EQ(plane.project({5, 5, -1}), Point(5, 5, 2));
    ParamPlane const patch({1, 0, 0}, {1, 2, 0}, {1, 0, 3});
    EXPECT_EQ(patch.at(0.5, 2), Point(1, 1, 6));
    EXPECT_EQ(patch.normal, Normal(1, 0, 0));
}

TEST(Range1d, GrowsAndClampsUnlessItIsEmpty) {
    Range1d const none(5, 3);
    Range1d range;
    for (double value : {10.0, -2.0, nan}) range.include(value);
    range.include(none);
    EXPECT_EQ(range, Range1d(-2, 10));
    EXPECT_TRUE(range.clamp(11) == 10 && range.clamp(4) == 4 && none.clamp(9) == 9 && none.length() == 0);
    EXPECT_TRUE(range.contains(10) && !range.contains(10.5) && !range.contains(nan));
}

TEST(Range3d, HoldsWhatItIncludesAndMeetsWhatItTouches) {
    Range3d range;
    EXPECT_TRUE(range.size() == Vector() && !range.intersects(Range3d({-9, -9, -9}, {9, 9, 9})));
    for (Point const& p : {Point(1, 2, 3), Point(-1, 5, 3), Point(nan, 0, 0)}) range.include(p);
    EXPECT_EQ(range, Range3d({-1, 2, 3}, {1, 5, 3}));
    EXPECT_EQ(range.center(), Point(0, 3.5, 3));
    EXPECT_TRUE(range.contains({1, 5, 3}) && !range.contains({0, 3, 3.1}) && !range.contains({nan, 3, 3}));
    EXPECT_TRUE(range.intersects(Range3d({1, 5, 3}, {2, 9, 9})) && !range.intersects(Range3d({1.1, 2, 3}, {2, 9, 9})));
}

TEST(Range3d, TransformedIsTheBoxOfItsTransformedCorners) {
    Draw draw(8);
    for (int i = 0; i < 200; ++i) {
        Range3d box(draw.point()), corners;
        box.include(draw.point());
        AffineMatrix const matrix = draw.matrix();
        for (int bits = 0; bits < 8; ++bits) {
            auto const corner = [&](int axis) { return bits >> axis & 1 ? box.min[axis] : box.max[axis]; };
            corners.include(Point::generate(corner) * matrix);
        }
        EXPECT_TRUE(equivalent(box.transformed(matrix), corners));
    }
    EXPECT_EQ(Range3d().transformed(AffineMatrix(-1)), Range3d());
}

}  // namespace
}  // namespace urLinear
