// Tests the shape checks in both modes.
#include <gtest/gtest.h>

#include "plst/Parser.h"

namespace {

using namespace nxPLST;
using ur::make;

ur::Reference<Array> numbers(int count) {
    auto array = make<Array>();
    for (int i = 0; i < count; ++i) array->insert(make<Double>(i));
    return array;
}

TEST(Parser, AcceptsOnlyTheKindItselfAndTakesNothingAway) {
    bool (Parser::*const checks[])() = {&Parser::parseBool, &Parser::parseDouble, &Parser::parseString,
                                        &Parser::parseArray, &Parser::parseDictionary};
    ur::Reference<Item> const items[] = {make<Bool>(),  make<Double>(),     make<String>(""),
                                         make<Array>(), make<Dictionary>(), nullptr};
    for (std::size_t item = 0; item < std::size(items); ++item) {
        Parser parser(items[item], false);
        EXPECT_EQ(parser.null(), !items[item]);
        for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ((parser.*checks[i % 5])(), i % 5 == item);
        EXPECT_EQ(parser.parseNumericArray(), item == 3) << "an empty one";
        for (int size : {0, 3}) EXPECT_EQ(Parser(numbers(size), false).parseNumericArray(3), size == 3);
    }
}

TEST(Parser, ThrowsFalseInThrowModeExceptForAnElementOfAnotherKind) {
    Parser null(nullptr, true);
    EXPECT_THROW(null.parseDouble(), bool);
    Parser three(numbers(3), true);
    EXPECT_THROW(three.parseNumericArray(2), bool);
    EXPECT_THROW(three.parseDictionary(), bool);
    auto mixed = numbers(3);
    (*mixed)[1] = make<String>("a");
    EXPECT_FALSE(Parser(mixed, true).parseNumericArray(3));
    EXPECT_FALSE(Parser(mixed, true).parseNumericArray());
    Parser text(make<String>("a"), false);
    text.setThrowMode();
    Parser copy = text;
    EXPECT_THROW(copy.parseNumericArray(3), bool);
    copy = three;
    EXPECT_TRUE(copy.parseNumericArray(3));
}

}  // namespace
