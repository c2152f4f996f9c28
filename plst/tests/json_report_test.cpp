// Tests reports of faults and losses.
#include "foundation/ur/tests/smallStack.h"
#include "plst/JsonReport.h"
#include "plst/tests/plainYajl.h"

namespace nxPLST {
namespace {

using namespace test;

JsonReport report(std::string const& text) {
    JsonReport report;
    report.reason = "left over";
    Reference<Item> item;
    bool const read = convertFromJSON(item, urString::CString(text), report);
    EXPECT_EQ(report.reason.empty(), read) << text;
    EXPECT_TRUE(read || report.lossCount == 0);
    return report;
}

TEST(JsonFault, IsTheFirstInvalidByte) {
    struct Case {
        std::string text;
        std::size_t offset, line, column;
        char const* reason;
    };
    Case const cases[] = {
        {"", 0, 1, 1, "there is no value in the text"},
        {"// nothing\n", 11, 2, 1, "there is no value in the text"},
        {"[1,\n 2\n 3]", 8, 3, 2, "expected ',' or ']'"},
        {"[12345678901234567890.5,\r]", 25, 1, 26, "expected a value"},
        {"{\"ä\": \"ö\" 1}", 12, 1, 11, "expected ',' or '}'"},
        {"{\"a\" 1}", 5, 1, 6, "expected ':'"},
        {"{a:1}", 1, 1, 2, "expected a key in quotes or '}'"},
        {"{\"a\":1,}", 7, 1, 8, "expected a key in quotes"},
        {"[tru]", 4, 1, 5, "expected true, false or null"},
        {"[1.]", 3, 1, 4, "expected a digit"},
        {"[-01]", 3, 1, 4, "a number must not begin with 0"},
        {"[\"\\x\"]", 3, 1, 4, "no such escape sequence"},
        {"[\"\\u12g4\"]", 6, 1, 7, "expected four hexadecimal digits"},
        {"[\"ab\ncd\"]", 4, 1, 5, "line break in a string"},
        {"[\"\x01\"]", 2, 1, 3, "control character in a string"},
        {"[\"\xC3(\"]", 3, 1, 4, "invalid UTF-8"},
        {"\n[9223372036854775808]", 2, 2, 2, "whole number outside of signed 64 bits"},
        {"[1, -1e999]", 4, 1, 5, "number too large for a double"},
        {"[1] [2]", 4, 1, 5, "expected the end of the text"},
        {"\xEF\xBB\xBF[1]", 0, 1, 1, "byte-order mark before the text"},
        {"[1 / 2]", 4, 1, 5, "expected '/' or '*'"},
        {"[\"abc", 5, 1, 6, "the text ends inside a string"},
        {"[1, /* 2]", 9, 1, 10, "the text ends inside a comment"},
        {"[\n {\"a\": [1, 2]", 15, 2, 14, "the text ends inside the object that begins at line 2, column 2"},
        {"[1,\n", 4, 2, 1, "the text ends inside the array that begins at line 1, column 1"},
    };
    for (Case const& one : cases) {
        JsonReport const result = report(one.text);
        auto const& [offset, line, column] = result.location;
        EXPECT_EQ(result.reason, one.reason) << one.text;
        EXPECT_EQ(std::tuple(offset, line, column), std::tuple(one.offset, one.line, one.column)) << one.text;
    }
}

/// Before a fault the text could still become JSON; with its byte it cannot. Without a fault, both readers lose the
/// same values.
TEST(JsonReport, ReportsTheFaultOrTheLossesOfAnyText) {
    NewTrees random;
    for (int i = 0; i < 15000; ++i) {
        std::string const text = mutated(random);
        JsonReport const fault = report(text);
        if (fault.reason.empty()) {
            ASSERT_EQ(fault.lossCount, report("/**/" + text).lossCount) << text;
            continue;
        }
        ASSERT_NE(fault.reason, "not the JSON that is read here") << text;
        std::size_t const offset = fault.location.offset;
        ASSERT_LE(offset, text.size()) << text;
        if (offset == text.size() || fault.reason.endsWith("bits") || fault.reason.endsWith("double")) continue;
        JsonReport const before = report(text.substr(0, offset));
        ASSERT_TRUE(before.reason.empty() || before.location.offset == offset || before.reason.startsWith("byte-order"))
            << text;
        JsonReport const with = report(text.substr(0, offset + 1));
        // yajl accepts a text that ends inside a string or a comment after the value.
        ASSERT_TRUE(with.location.offset == offset || with.reason.empty()) << text;
    }
}

std::string losses(JsonReport const& report) {
    std::string text;
    for (JsonLoss const& loss : report.losses) {
        text += std::to_string(loss.location.line) + ':' + std::to_string(loss.location.column) + ' ' +
                std::string(loss.path) + ' ' + describe(loss.kind) + '\n';
    }
    return text;
}

TEST(JsonLosses, AreListedInTheOrderOfTheText) {
    EXPECT_EQ(losses(report(R"({"a": [1, null, 9007199254740993],
  "odd key": null, "a": {"x": 1, "\u0078": 2, "x": null},
  "b": -9223372036854775807, "c": 9007199254740992, "d": 0.1})")),
              "1:2 .a repeated key\n"
              "1:11 .a[1] null has no item\n"
              "1:17 .a[2] rounded integer\n"
              "2:14 .\"odd key\" null has no item\n"
              "2:26 .a.x repeated key\n"
              "2:52 .a.x null has no item\n"
              "3:8 .b rounded integer\n");
    EXPECT_EQ(losses(report("/* null */ null")), "1:12 . null has no item\n");
    EXPECT_EQ(report("{\"a\":[1,2.5,\"null\"]}").lossCount, 0U);
}

TEST(JsonLosses, KeepTheFirstAndCountTheRest) {
    std::string text = "{\"x\":0,\"y\":[";
    for (int i = 0; i < 100000; ++i) text += "null,";
    JsonReport const result = report(text + "1],\"x\":1}");
    EXPECT_EQ(result.lossCount, 100001U);
    ASSERT_EQ(result.losses.size(), JsonReport::mostLosses);
    EXPECT_EQ(result.losses.front().path, ".x");
    EXPECT_EQ(result.losses.back().path, ".y[98]");
}

TEST(JsonLosses, HaveBoundedPathsAtAnyDepth) {
    ::test::onSmallStack([] {
        constexpr int depth = ::test::manyLevels / 4;
        std::string text;
        for (int i = 0; i < depth; ++i) text += "{\"é\":[";
        text += "null";
        for (int i = 0; i < depth; ++i) text += "]}";
        JsonReport const result = report(text);
        ASSERT_EQ(result.lossCount, 1U);
        urString::CString const& path = result.losses[0].path;
        EXPECT_LE(path.size(), JsonLoss::longestPath);
        EXPECT_TRUE(path.startsWith(".é[0].é[0]"));
        EXPECT_TRUE(path.endsWith("..."));
    });
}

TEST(JsonReport, OutlivesATextOfTheTreeThatIsReplaced) {
    Reference<Item> item = make<String>("[null, \"a text that is too long to lie in its object\"]");
    JsonReport report;
    EXPECT_TRUE(convertFromJSON(item, asString(item)->value(), report));
    EXPECT_EQ(report.lossCount, 1U);
    EXPECT_EQ(asArray(item)->size(), 1);
}

}  // namespace
}  // namespace nxPLST
