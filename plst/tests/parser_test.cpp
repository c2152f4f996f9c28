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

TEST(Parser, AcceptsOnlyTheKindItself) {
    Parser parser(make<Double>(1.0), false);
    EXPECT_TRUE(parser.parseDouble() && parser.parseDouble()) << "it takes nothing away";
    EXPECT_FALSE(parser.parseBool() || parser.parseString() || parser.parseArray() || parser.parseDictionary());
    EXPECT_TRUE(Parser().null() && !Parser().parseDouble() && !Parser(nullptr, false).parseNumericArray());
}

TEST(Parser, ChecksNumericArrays) {
    Parser three(numbers(3), false);
    EXPECT_TRUE(three.parseNumericArray(3) && three.parseNumericArray() && !three.parseNumericArray(2));
    Parser none(numbers(0), false);
    EXPECT_TRUE(none.parseNumericArray() && none.parseNumericArray(0));
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
