// The script forms of points, ranges, matrices and colours.
#include "script/reflectedValues.h"

#include <gtest/gtest.h>

#include "foundation/nxRFL/tests/roundTrip.h"

namespace {

using namespace nxRFL;

using test::readBack;
using test::written;

TEST(ReflectedValues, AreArraysOfTheirComponents) {
    using namespace urLinear;
    auto const check = []<class... Values>(std::vector<double> const& components, Values const&... values) {
        for (auto const& read : {readBack<ur::vector<double>>(written(values))...}) EXPECT_EQ(read, components);
        EXPECT_TRUE((... && (readBack<Values>(written(values)) == values)));
    };
    check({1, 2}, Point2(1, 2), Vector2(1, 2), Tuple2(1, 2), Point2Flt(1, 2));
    check({1, 2, 3}, Point(1, 2, 3), Vector(1, 2, 3), VectorFlt(1, 2, 3));
    check({1, 2, 3.5}, PointFlt(1, 2, 3.5F));
    check({0, 1}, Normal2(0, 1));
    check({0, 1, 0}, Normal(0, 1, 0), NormalFlt(0, 1, 0));
    check({2, 0, 0, 2, 5, 6}, AffineMatrix2(2).translate({5, 6}));
    check({0.5, 0.25, 1}, urUtil::HSL(0.5F, 0.25F, 1));
    check({0.5, 0.25, 1, 0}, urUtil::Color(0.5F, 0.25F, 1, 0));
    EXPECT_EQ(readBack<Normal>(written(Point(0, 0, 5))), Normal(0, 0, 1));
    EXPECT_THROW(readBack<Point>(written(Point2(1, 2))), Exception);
}

TEST(ReflectedValues, AreDictionariesOfTheirParts) {
    using namespace urLinear;
    using Bounds = ur::map<urString::CString, double>;
    using Corners = ur::map<urString::CString, Point>;
    EXPECT_EQ(readBack<Range1d>(written(Range1d(1, 2))), Range1d(1, 2));
    EXPECT_EQ(readBack<Range1d>(written(Bounds{{"max", 5}})), Range1d(0, 5));
    EXPECT_EQ(readBack(written(Bounds{}), Range1d(3, 4)), Range1d(0, 0));
    EXPECT_THROW(readBack<Range1d>(written(Bounds{{"min", 1}, {"mid", 2}})), Exception);
    Range3d const box({1, 2, 3}, {4, 5, 6});
    EXPECT_EQ(readBack<Range3d>(written(box)), box);
    EXPECT_EQ(readBack(written(Corners{{"max", {4, 5, 6}}}), box), Range3d(Point(), {4, 5, 6}));
    Plane const plane({1, 2, 3}, Normal(1, 0, 0));
    EXPECT_EQ(readBack<Plane>(written(plane)), plane);
    EXPECT_EQ(readBack(written(Corners{{"point", {7, 8, 9}}}), plane), Plane({7, 8, 9}, Normal(1, 0, 0)));
}

}  // namespace
