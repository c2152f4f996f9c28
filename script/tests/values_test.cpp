// The reflected forms of points, ranges, matrices and colours.
#include "script/reflectedValues.h"

#include <gtest/gtest.h>

#include "foundation/nxRFL/values.h"

namespace {

using namespace nxRFL;

template <class Value>
Stack written(Value const& value) {
    Stack stack;
    Writer writer(stack);
    write(writer, value);
    return stack;
}

template <class Value>
Value readBack(Stack const& stack, Value value = {}) {
    Reader reader(stack);
    read(reader, value);
    EXPECT_EQ(reader.kind(), Kind::none);
    return value;
}

TEST(ReflectedValues, AreArraysOfTheirComponents) {
    using namespace urLinear;
    auto const check = [](auto const& value, std::vector<double> const& components) {
        EXPECT_EQ(readBack<ur::vector<double>>(written(value)), components);
        EXPECT_EQ(readBack<std::remove_cvref_t<decltype(value)>>(written(value)), value);
    };
    check(Point(1, 2, 3), {1, 2, 3});
    check(Vector(1, 2, 3), {1, 2, 3});
    check(PointFlt(1, 2, 3.5F), {1, 2, 3.5});
    check(VectorFlt(1, 2, 3), {1, 2, 3});
    check(Point2(1, 2), {1, 2});
    check(Vector2(1, 2), {1, 2});
    check(Tuple2(1, 2), {1, 2});
    check(Point2Flt(1, 2), {1, 2});
    check(Normal(1, 0, 0), {1, 0, 0});
    check(NormalFlt(0, 1, 0), {0, 1, 0});
    check(Normal2(0, 1), {0, 1});
    check(AffineMatrix2(2).translate({5, 6}), {2, 0, 0, 2, 5, 6});
    check(urUtil::HSL(0.5F, 0.25F, 1), {0.5, 0.25, 1});
    check(urUtil::Color(0.5F, 0.25F, 1, 0), {0.5, 0.25, 1, 0});
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
