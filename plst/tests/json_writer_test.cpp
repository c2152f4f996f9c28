// Tests strict JSON: its layout, numbers and refusals, compared with yajl's generator.
#include <bit>
#include <cstdint>
#include <limits>

#include "foundation/ur/tests/smallStack.h"
#include "foundation/urString/tests/CommaLocale.h"
#include "plst/impl/json/JsonNumberWriter.h"
#include "plst/json.h"
#include "plst/make.h"
#include "plst/tests/plainYajl.h"

namespace nxPLST {
namespace {

using namespace test;

std::string strict(Reference<Item> const& item) {
    urString::CString text;
    EXPECT_TRUE(convertToJSON(text, item));
    return std::string(text);
}

TEST(StrictJson, AppendsAndKeepsWhatCameBeforeARefusal) {
    auto const tree = arrayOf({make<String>("kept")});
    urString::CString text = "before ";
    EXPECT_TRUE(convertToJSON(text, tree));
    tree->insert(make<Double>(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(convertToJSON(text, tree));
    EXPECT_EQ(text, "before [\n    \"kept\"\n]\n[\n    \"kept\"");
}

TEST(StrictJson, StopsWhereTheGeneratorDoes) {
    for (int depth : {126, 127, 128, 200}) {
        for (int kind = 0; kind < 2; ++kind) {
            Reference<Item> tree = make<Double>(1);
            for (int i = 0; i < depth; ++i)
                tree = kind == 0 ? Reference<Item>(arrayOf({tree})) : dictionaryOf({{"k", tree}});
            urString::CString text;
            std::string plain;
            EXPECT_EQ(convertToJSON(text, tree), depth < 128);
            EXPECT_EQ(writePlainly(plain, tree.get()), depth < 128);
            EXPECT_EQ(text.view(), plain);
        }
    }
}

TEST(StrictJson, IsTheGeneratorsTextForAnyTree) {
    NewTrees random;
    for (int i = 0; i < 4000; ++i) {
        Reference<Item> const tree = random.tree(5, i % 2 ? 40 : 0);
        urString::CString text;
        std::string plain;
        ASSERT_EQ(convertToJSON(text, tree), writePlainly(plain, tree.get()));
        ASSERT_EQ(text.view(), plain);
    }
}

std::string styled(Reference<Item> const& tree, JsonStyle const& style) {
    urString::CString text = "before ";
    EXPECT_TRUE(writeJson(text, tree, style));
    return std::string(text).substr(7);
}

TEST(StyledJson, IsLaidOutAsAsked) {
    auto const tree = dictionary(
        {{"a", {1, -0.0, 1e20, 0x1p63, 0.1, {}}}, {"ä\x01", "\"\xF0\x9F\x98\x80\xFF\n"}, {"n", array({nullptr})}});
    EXPECT_EQ(styled(tree, {.indent = 0}),
              "{\"a\":[1,-0.0,1e+20,9.223372036854776e+18,0.1,[]],\"n\":[null],"
              "\"ä\\u0001\":\"\\\"\xF0\x9F\x98\x80\xEF\xBF\xBD\\n\"}");
    EXPECT_EQ(
        styled(dictionary({{"ä", {1, dictionary({})}}, {"\xF0\x9F\x98\x80", true}}), {.indent = 3, .asciiOnly = true}),
        "{\n   \"\\u00E4\": [\n      1,\n      {}\n   ],\n   \"\\uD83D\\uDE00\": true\n}");
    std::string const longText(20, 'x');
    EXPECT_EQ(styled(make<String>(longText + "\xFF\xC3\xA4" + longText), {}),
              '"' + longText + "\xEF\xBF\xBD\xC3\xA4" + longText + '"');
    EXPECT_EQ(styled(nullptr, {}), "null");
    urString::CString text = "before";
    EXPECT_FALSE(writeJson(text, array({1, HUGE_VAL})));
    EXPECT_FALSE(writeJson(text, doubled(60, make<Bool>(true))));
    EXPECT_EQ(text, "before");
}

TEST(StyledJson, IsIndentedByAnyWidthWithinBounds) {
    EXPECT_EQ(styled(array({1}), {.indent = 1000}), "[\n" + std::string(1000, ' ') + "1\n]");
    Reference<Item> const rows = array({array({1}), array({2})});
    for (unsigned const width : {40U << 20, 1U << 30, UINT_MAX}) {
        std::string const text = styled(rows, {.indent = width});
        EXPECT_LT(text.size(), 80U << 20);
        Reference<Item> read;
        EXPECT_TRUE(convertFromJSON(read, text));
        EXPECT_TRUE(equal(read, rows));
    }
}

TEST(StyledJson, IsReadBackAsTheSameTree) {
    NewTrees random;
    int same = 0;
    for (int i = 0; i < 4000; ++i) {
        Reference<Item> const tree = random.tree(5, 0);
        Reference<Item> read;
        ASSERT_TRUE(convertFromJSON(read, styled(tree, {.indent = random.below(5), .asciiOnly = i % 2 == 0})));
        same += equal(read, tree);
    }
    EXPECT_GT(same, 500) << "trees without texts that are no UTF-8";
    std::vector<double> numbers{-0.0, 0x1p53, 0x1p63, 1e19, 1e20};
    for (std::size_t i = 0; i < 5; ++i) {
        for (double const to : {0.0, HUGE_VAL}) numbers.push_back(std::nextafter(numbers[i], to));
    }
    for (std::size_t i = numbers.size(); i > 0; --i) numbers.push_back(-numbers[i - 1]);
    while (numbers.size() < 100000) numbers.push_back(random.number());
    for (double const number : numbers) {
        Reference<Item> read;
        ASSERT_TRUE(convertFromJSON(read, styled(make<Double>(number), {})));
        ASSERT_EQ(std::bit_cast<std::uint64_t>(asDouble(read)->value()), std::bit_cast<std::uint64_t>(number));
    }
    ::test::onSmallStack([] {
        Reference<Item> deep = array({});
        for (int i = 0; i < ::test::manyLevels; ++i) deep = array({deep});
        EXPECT_LT(styled(deep, {.indent = 1}).size(), 400U * ::test::manyLevels);
    });
}

// Numbers ------------------------------------------------------------------------------------------------------

std::string printed(char const* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string exact(double value) {
    char text[impl::numberRoom];
    return {text, impl::writeExactNumber(text, value)};
}

std::string brief(double value) {
    char text[impl::numberRoom];
    return {text, impl::writeShortNumber(text, value)};
}

TEST(JsonNumber, IsWhatPrintfPrints) {
    NewTrees random;
    auto const expectPrinted = [](double value) {
        ASSERT_EQ(exact(value), printed("%.20g", value));
        ASSERT_EQ(brief(value), printed("%g", value));
    };
    for (int i = 0; i < 100000 && !testing::Test::HasFailure(); ++i) expectPrinted(random.number());
    for (int exponent = -30; exponent < 30 && !testing::Test::HasFailure(); ++exponent) {
        double below = std::pow(10.0, exponent);
        double above = below;
        for (int i = 0; i < 300; ++i) {
            expectPrinted(below);
            expectPrinted(above);
            below = std::nextafter(below, 0);
            above = std::nextafter(above, HUGE_VAL);
        }
    }
    for (double value : {0.1, -0.0, 5e-324}) expectPrinted(value);
    for (double value : {std::nan(""), HUGE_VAL, -HUGE_VAL}) EXPECT_EQ(brief(value), printed("%g", value));
    EXPECT_EQ(brief(-std::nan("")), "-nan");
}

TEST(JsonNumber, IsReadBackAsTheSameDoubleWithTheNamedExceptions) {
    NewTrees random;
    auto numbers = make<Array>();
    auto others = make<Array>();
    auto const add = [&](double value) {
        bool const isNamed =
            (value == 0 && std::signbit(value)) || (std::fabs(value) >= 0x1p63 && std::fabs(value) < 1e20);
        (isNamed ? others : numbers)->insert(make<Double>(value));
    };
    while (numbers->size() < 200000) add(random.number());
    for (double const limit : {0.0, 0x1p63, 1e19, 1e20}) {
        for (double const value : {limit, std::nextafter(limit, 0), std::nextafter(limit, HUGE_VAL)}) {
            add(value);
            add(-value);
        }
    }
    Reference<Item> again;
    std::string const plain = strict(numbers);
    ASSERT_TRUE(convertFromJSON(again, urString::CString(plain)));
    EXPECT_TRUE(same(again.get(), numbers.get()));
    for (auto const& other : others->array()) {
        bool const isRead = convertFromJSON(again, urString::CString(strict(other)));
        EXPECT_TRUE(!isRead || asDouble(other)->value() == 0);
    }
}

TEST(JsonNumber, HasAPointInEveryLocale) {
    ::test::CommaLocale const locale;
    if (!locale.active()) GTEST_SKIP() << "no locale with a decimal comma can be made here";
    ASSERT_EQ(printed("%g", 0.5), "0,5");
    for (double value : {0.5, 1e-7, 1.5e300, 123456789012.75}) {
        EXPECT_EQ(exact(value).find(','), std::string::npos);
        EXPECT_EQ(asJSON(make<Double>(value)).find(','), urString::CString::npos);
        for (char const* form : {"[%s]", "%s", "/**/%s"}) {  // one for each reader
            std::string text(form);
            text.replace(text.find("%s"), 2, exact(value));
            Reference<Item> item;
            ASSERT_TRUE(convertFromJSON(item, urString::CString(text)));
            if (auto array = asArray(item)) item = array->objectAt(0);
            EXPECT_EQ(asDouble(item)->value(), value);
        }
    }
    EXPECT_EQ(printed("%g", 0.5), "0,5");
}

}  // namespace
}  // namespace nxPLST
