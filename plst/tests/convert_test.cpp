// Tests conversions between items and the framework's value types.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "plst/convert.h"
#include "plst/shape.h"
#include "plst/tests/trees.h"

namespace {

using namespace nxPLST;
using namespace nxPLST::test;
using testing::ElementsAre;

Reference<Item> array(std::initializer_list<double> numbers) {
    auto result = make<Array>();
    for (double number : numbers) result->insert(make<Double>(number));
    return result;
}

template <class T>
Reference<Item> written(T const& value) {
    Reference<Item> out = make<Bool>();
    convert(out, value);
    return out;
}

template <class T>
std::vector<double> numbersOf(T const& value) {
    std::vector<double> result;
    auto const item = asArray(written(value));
    for (auto const& element : item->array()) result.push_back(asDouble(element)->value());
    return result;
}

template <class T>
concept Convertible = requires(Reference<Item>& out, T value) {
    convert(out, value);
};
static_assert(Convertible<char const*> && Convertible<Reference<String>>);
static_assert(!Convertible<wchar_t const*> && !Convertible<Item*>, "no pointer becomes true");

template <class T>
T readInto(T out, Reference<Item> item) {
    convert(out, item);
    return out;
}

/// The value is written as these numbers and read back unchanged.
template <class T>
void expectNumbers(T const& value, std::vector<double> const& numbers) {
    EXPECT_EQ(numbersOf(value), numbers);
    EXPECT_TRUE(readInto(T(), written(value)) == value);
}

TEST(Convert, WritesEachTypeInItsShapeAndReadsItBack) {
    EXPECT_EQ(asDouble(written(3))->value(), 3.0);
    EXPECT_EQ(asDouble(written(0.1f))->value(), double(0.1f));
    EXPECT_TRUE(asBool(written(true))->value());
    EXPECT_STREQ(asString(written("text"))->value().c_str(), "text");
    urLinear::Normal const normal(1, 2, -3);
    urLinear::AffineMatrix matrix;
    for (int i = 0; i < 12; ++i) matrix.coefficient(i) = 0.1 * i;
    expectNumbers(urLinear::Point2(1, 2), {1, 2});
    expectNumbers(urLinear::Point(1, 2, 3), {1, 2, 3});
    expectNumbers(urLinear::Vector(1, 2, 3), {1, 2, 3});
    expectNumbers(normal, {normal.x(), normal.y(), normal.z()});
    expectNumbers(urLinear::Quaternion(1, 2, 3, 4), {1, 2, 3, 4});
    expectNumbers(matrix, {matrix.data(), matrix.data() + 12});
    expectNumbers(urUtil::Color(0.5f, 0.25f, 1, 0), {0.5, 0.25, 1, 0});
    expectNumbers(urUtil::Color8(10, 20, 30, 255), {10, 20, 30, 255});
    expectNumbers(nxSupport::BoundedDouble(9, 1, 2), {9, 1, 2});
    expectNumbers(nxSupport::BoundedInt(5, 0, 10), {5, 0, 10});
}

TEST(Convert, ReadsNumbers) {
    double const huge = 1e300;
    double const nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(readInto(0, written(3)), 3);
    EXPECT_EQ(readInto(0, written(-2.7)), -2);
    EXPECT_EQ(readInto(0, written(2.7)), 2);
    EXPECT_EQ(readInto(0, written(huge)), std::numeric_limits<int>::max());
    EXPECT_EQ(readInto(0, written(-huge)), std::numeric_limits<int>::min());
    EXPECT_EQ(readInto(7, written(nan)), 7);
    EXPECT_EQ(readInto(0.0f, written(0.1)), 0.1f);
    EXPECT_EQ(readInto(false, written(-0.5)), true);
    EXPECT_EQ(readInto(true, written(0.0)), false);
    EXPECT_EQ(readInto(false, written(nan)), true);
    EXPECT_EQ(readInto(nxSupport::BoundedInt(), array({5.9, -0.9, 10})).minValue(), 0);
    for (auto const& item : {array({nan, 1, 9}), array({5, nan, 9}), array({5, 1, nan})}) {
        EXPECT_EQ(readInto(nxSupport::BoundedInt(3, 2, 4), item).value(), 3);
    }
}

template <class T>
void expectRange(double beyond) {
    using Limits = std::numeric_limits<T>;
    double const least = static_cast<double>(Limits::lowest());
    double const greatest = std::nextafter(beyond, 0.0);
    EXPECT_EQ(readInto(T(7), written(least)), Limits::lowest());
    EXPECT_EQ(readInto(T(7), written(greatest)), static_cast<T>(greatest));
    for (T const value : {T(0), T(1), Limits::lowest(), Limits::max(), T(Limits::max() / 2 + 1)}) {
        auto const item = written(value);
        bool const hasDouble = value != Limits::max() || Limits::digits <= 53;
        ASSERT_EQ(!item.null(), hasDouble) << value;
        EXPECT_EQ(readInto(T(7), item), hasDouble ? value : T(7));
        EXPECT_EQ(hasShape<T>(item), hasDouble);
    }
    for (double const outside : {beyond, std::nextafter(least, -HUGE_VAL) - 1, HUGE_VAL, std::nan("")}) {
        EXPECT_EQ(readInto(T(7), written(outside)), T(7)) << outside;
        EXPECT_FALSE(hasShape<T>(written(outside))) << outside;
    }
    EXPECT_EQ(readInto(T(7), written("3")), T(7));
}

TEST(Convert, PassesIntegersOfAllTypesWithoutLossOrNotAtAll) {
    expectRange<unsigned>(0x1p32);
    expectRange<long long>(0x1p63);
    expectRange<std::int64_t>(0x1p63);
    expectRange<std::size_t>(0x1p64);
    expectRange<std::uint8_t>(256);
    EXPECT_TRUE(written((std::int64_t(1) << 53) + 1).null());
    EXPECT_EQ(readInto(0U, written(2.7)), 2U);
}

TEST(Convert, KeepsTheLowBitsOfColourChannels) {
    EXPECT_EQ(readInto(urUtil::Color8(), array({10.9, 300, -1, 255})), urUtil::Color8(10, 44, 255, 255));
    EXPECT_EQ(readInto(urUtil::Color8(), array({256, 255.9, 0, 1})), urUtil::Color8(0, 255, 0, 1));
    EXPECT_EQ(readInto(urUtil::Color8(), array({1e300, -1e300, 0x1p70 + 0x1p60, 4})), urUtil::Color8(0, 0, 0, 4));
    for (double const bad : {HUGE_VAL, -HUGE_VAL, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(readInto(urUtil::Color8(1, 2, 3, 4), array({9, 9, 9, bad})), urUtil::Color8(1, 2, 3, 4));
    }
}

TEST(Convert, WritesTextAsUtf8) {
    urString::IString const wide(L"gr\u00fc\u00df \U0001F600");
    auto const item = written(wide);
    EXPECT_STREQ(asString(item)->value().c_str(), "gr\u00fc\u00df \U0001F600");
    EXPECT_EQ(readInto(urString::IString(), item), wide);
    urString::CString const withNul("a\0b", 3);
    EXPECT_EQ(readInto(urString::CString(), written(withNul)), withNul);
}

TEST(Convert, ReadsMatricesFromRows) {
    auto const rows = {array({1, 2, 3, 4}), array({5, 6, 7, 8}), array({9, 10, 11, 12})};
    auto const matrix = readInto(urLinear::AffineMatrix(), arrayOf(rows));
    EXPECT_THAT(std::vector<double>(matrix.data(), matrix.data() + 12),
                ElementsAre(1, 5, 9, 2, 6, 10, 3, 7, 11, 4, 8, 12));
    auto four = asArray(arrayOf(rows));
    four->insert(array({0, 0, 0, 1}));
    EXPECT_EQ(readInto(urLinear::AffineMatrix(), four), matrix);
    four->insert(array({0, 0, 0, 1}));
    EXPECT_EQ(readInto(urLinear::AffineMatrix(), four), urLinear::AffineMatrix());
}

TEST(Convert, LeavesTheTargetUnchangedForAnotherShape) {
    std::vector<Reference<Item>> const others = {nullptr, written("text"), array({1}), arrayOf({written("a"), nullptr}),
                                                 arrayOf({array({1, 2, 3, 4}), nullptr, array({1, 2, 3, 4})})};
    for (auto const& item : others) {
        EXPECT_EQ(readInto(7, item), 7);
        EXPECT_EQ(readInto(true, item), true);
        EXPECT_EQ(readInto(7.5, item), 7.5);
        EXPECT_EQ(readInto(urLinear::Point2(1, 2), item), urLinear::Point2(1, 2));
        EXPECT_EQ(readInto(urLinear::Point(1, 2, 3), item), urLinear::Point(1, 2, 3));
        EXPECT_EQ(readInto(urLinear::Normal(1, 0, 0), item), urLinear::Normal(1, 0, 0));
        EXPECT_EQ(readInto(urUtil::Color8(1, 2, 3, 4), item), urUtil::Color8(1, 2, 3, 4));
        EXPECT_EQ(readInto(urLinear::AffineMatrix(), item), urLinear::AffineMatrix());
        EXPECT_EQ(readInto(nxSupport::BoundedInt(1, 2, 3), item).value(), 1);
    }
    EXPECT_STREQ(readInto(urString::CString("kept"), array({1})).c_str(), "kept");
}

TEST(Convert, SharesConstantItemsAndCopiesTheOthers) {
    Reference<Item const> const item = array({1, 2});
    Reference<Item const> const entries = make<Dictionary>();
    auto const read = [](auto out, Reference<Item const> const& from) {
        convert(out, from);
        return out;
    };
    EXPECT_EQ(read(Reference<Item const>(), item), item);
    EXPECT_EQ(read(Reference<Array const>(), item).get(), item.get());
    auto const copy = read(Reference<Array>(), item);
    ASSERT_TRUE(copy);
    EXPECT_NE(copy.get(), item.get());
    EXPECT_TRUE(copy->congruent(*item));
    auto const dictionary = read(Reference<Dictionary const>(), entries);
    ASSERT_TRUE(dictionary);
    EXPECT_NE(dictionary.get(), entries.get());
    EXPECT_TRUE(read(make<Double>(), item).null());
    EXPECT_TRUE(read(make<Dictionary>(), Reference<Item const>()).null());
    Reference<Item> out = make<Bool>();
    convert(out, item);
    EXPECT_TRUE(out && out != item && out->congruent(*item));
}

}  // namespace
