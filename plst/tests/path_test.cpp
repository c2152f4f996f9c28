// Tests the syntax of paths and the values that they lead to.
#include <gtest/gtest.h>

#include "plst/Path.h"
#include "plst/make.h"

namespace nxPLST {
namespace {

std::string refusal(std::string_view text) {
    std::string error;
    return parsePath(text, error) ? "a path" : error;
}

TEST(Paths, AreReadAndSpelled) {
    std::string error;
    auto const path = parsePath(R"(.a["b c"][-1]."\"\\\n\u00e4\ud83d\ude00"._09ä)", error);
    ASSERT_TRUE(path);
    EXPECT_EQ(*path, (Path{"a", "b c", -1L, "\"\\\nä😀", "_09ä"}));
    std::string spelled;
    for (auto const& step : *path) spelled += stepText(step);
    EXPECT_EQ(spelled, ".a.\"b c\"[-1].\"\\\"\\\\\\u000aä😀\"._09ä");
    EXPECT_EQ(parsePath(spelled, error), path);
    EXPECT_EQ(parsePath(".", error), Path());
    EXPECT_EQ(parsePath("", error), Path());
    EXPECT_EQ(parsePath(keyText(""), error), Path{""});
}

TEST(Paths, AreRefusedWithThePlace) {
    EXPECT_EQ(refusal("a"), "bad path a: expected '.' or '[' at character 1");
    EXPECT_EQ(refusal(".a..b"), "bad path .a..b: expected a key at character 4");
    EXPECT_EQ(refusal(".\"a"), "bad path .\"a: expected '\"' at character 4");
    EXPECT_EQ(refusal("[\"a\""), "bad path [\"a\": expected ']' at character 5");
    EXPECT_EQ(refusal("[1"), "bad path [1: expected ']' at character 3");
    EXPECT_EQ(refusal("[*]"), "bad path [*]: expected an index at character 2");
    for (char const* const escape : {R"("\x")", R"("\u12")", R"("\)"}) {
        EXPECT_NE(refusal("." + std::string(escape)).find("expected an escape sequence at character 3"),
                  std::string::npos);
    }
}

TEST(Paths, LeadToOnePlaceAndPatternsToAll) {
    auto const root =
        dictionary({{"list", array({dictionary({{"x", 1}}), dictionary({{"y", 2}}), array({7, 8})})}, {"n", 3}});
    EXPECT_EQ(valueOf<double>(at(root, ".list[-1][0]")), 7);
    for (char const* const nowhere : {".list[3]", ".list[-4]", ".list.x", ".n[0]", ".n.x", "n"}) {
        EXPECT_EQ(at(root, nowhere), nullptr) << nowhere;
    }
    std::string error;
    EXPECT_EQ(follow(root, *parsePath(".list[1].z.more", error), error), nullptr);
    EXPECT_EQ(error, "nothing at .list[1].z");

    auto const all = [&](char const* text) {
        std::vector<double> numbers;
        for (auto const& item : followAll(root, *parsePattern(text, error)))
            numbers.push_back(valueOf<double>(item, -1));
        return numbers;
    };
    EXPECT_EQ(all(".list[*].x"), std::vector<double>{1});
    EXPECT_EQ(all(".list[*][*]"), (std::vector<double>{1, 2, 7, 8}));
    EXPECT_EQ(all("[*]"), (std::vector<double>{-1, 3}));
    EXPECT_EQ(all(".n"), std::vector<double>{3});
    EXPECT_EQ(all(".n[*]"), std::vector<double>{});
    EXPECT_FALSE(parsePattern("[*x]", error));
    EXPECT_EQ(followAll(nullptr, *parsePattern(".a[*]", error)).size(), 0U);
}

}  // namespace
}  // namespace nxPLST
