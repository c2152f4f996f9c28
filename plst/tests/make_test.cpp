// Tests trees made in place, read by key and path, compared and printed by value, for all ordinary types.
#include "plst/make.h"

#include <gtest/gtest.h>

#include <sstream>

#include "foundation/ur/tests/Chair.h"
#include "foundation/urLinear/Point.h"
#include "plst/json.h"

namespace nxPLST::test {

namespace {

using ur::test::Chair;
using ur::test::Wood;

std::string printed(ur::Reference<Item const> const& item) {
    std::ostringstream out;
    out << *item;
    return out.str();
}

TEST(StandardStrings, TakeJsonAndShowReferences) {
    ur::Reference<Item> const item = dictionary({{"a", 1}});
    std::string text = "before ";
    EXPECT_TRUE(writeJson(text, item, {.indent = 0}));
    EXPECT_EQ(text, "before {\"a\":1}");
    ur::Reference<Item> read;
    EXPECT_TRUE(convertFromJSON(read, std::string_view(text).substr(7)));
    EXPECT_TRUE(equal(read, item));
    EXPECT_FALSE(convertFromJSON(read, static_cast<char const*>(nullptr)));
    EXPECT_FALSE(convertToJSON(text, array({item, item}), 10));
    text.clear();
    EXPECT_TRUE(convertToJSON(text, item));
    EXPECT_EQ(text, "{\n    \"a\": 1\n}\n");
    EXPECT_EQ(testing::PrintToString(item) + testing::PrintToString(ur::Reference<Dictionary>()), "{\"a\":1}null");
}

TEST(Trees, AreMadeInPlace) {
    auto const shared = ur::make<Double>(7);
    auto const desk = dictionary({{"name", "desk"},
                                  {"size", 1.5},
                                  {"at", {1, 2, 3}},
                                  {"tags", {"a", std::string("b"), urString::CString("c")}},
                                  {"drawer", {{"open", true}, {"at", {{"x", 1}, {"y", nullptr}}}}},
                                  {"pairs", array({{"a", 1}})},
                                  {"absent", nullptr},
                                  {"shared", shared}});
    desk->insert("more", array({}));
    desk->insert(std::string("count"), 2);
    asArray(desk->find("more"))->insert("text");
    EXPECT_EQ(printed(desk),
              R"({"at":[1,2,3],"count":2,"drawer":{"at":{"x":1},"open":true},"more":["text"],"name":"desk",)"
              R"("pairs":[["a",1]],"shared":7,"size":1.5,"tags":["a","b","c"]})");
    EXPECT_EQ(desk->find("shared"), shared);
    std::string_view const key = "count and more";
    for (auto const& found : {desk->get("count"), desk->get(std::string("count")), desk->find(key.substr(0, 5)),
                              desk->find(urString::CString("count"))}) {
        EXPECT_EQ(valueOf<std::size_t>(found), 2U);
    }
    EXPECT_FALSE(desk->find(static_cast<char const*>(nullptr)));
}

TEST(Trees, AreReadByKeyAndByPath) {
    auto const tree = dictionary({{"size", 1.5}, {"name", "desk"}, {"places", {{1, 2}, {3, 4}}}});
    EXPECT_EQ(get<double>(tree, "size"), 1.5);
    EXPECT_EQ(get<double>(tree, "name", 2.5), 2.5);
    EXPECT_EQ(get<std::string>(tree, "name"), "desk");
    EXPECT_EQ(get<std::string>(tree, std::string("absent"), "none"), "none");
    EXPECT_EQ(get<std::string>(tree, "absent", std::string_view("none")), "none");
    EXPECT_EQ(get<double>(ur::Reference<Dictionary>(), "size", 1), 1);
    EXPECT_EQ(get<double>(ur::Reference<Item const>(tree), "size"), 1.5);
    EXPECT_EQ(get<double>(at(tree, ".places"), "size", 2), 2);
    EXPECT_EQ(at(tree, "."), tree);
    ur::Reference<Item const> const constant = tree;
    EXPECT_FALSE(at(constant, ".places[2]"));
    asArray(at(tree, ".places"))->insert(5);
    EXPECT_EQ(valueOf<double>(at(constant, ".places[2]")), 5);
}

/// The item converts back to the value; items of another shape leave a value unchanged.
template <class T>
std::string both(T const& value) {
    ur::Reference<Item> item;
    convert(item, value);
    EXPECT_TRUE(hasShape<T>(item));
    T copy{};
    convert(copy, item);
    EXPECT_TRUE(copy == value);
    EXPECT_FALSE(hasShape<T>(dictionary({{"odd", array({array({})})}})));
    convert(copy, dictionary({{"odd", array({array({})})}}));
    EXPECT_TRUE(copy == value);
    return item ? printed(item) : "null";
}

TEST(Trees, HoldContainersEnumerationsAndStructures) {
    EXPECT_EQ(both(std::string("a\"b")), R"("a\"b")");
    EXPECT_EQ(both(std::vector{1, 2}), "[1,2]");
    EXPECT_EQ(both(std::vector{true, false}), "[true,false]");
    EXPECT_EQ(both(std::array{1.5, 2.5}), "[1.5,2.5]");
    EXPECT_EQ(both(std::optional(3)), "3");
    EXPECT_EQ(both(std::optional<int>()), "null");
    EXPECT_EQ(both(std::map<std::string, std::vector<int>>{{"b", {1}}, {"a", {}}}), R"({"a":[],"b":[1]})");
    EXPECT_EQ(both(std::map<urString::CString, double>{{"k", 0.5}}), R"({"k":0.5})");
    EXPECT_EQ(both(Wood::ash), R"("ash")");
    EXPECT_EQ(both(Chair{"high", Wood::ash, 2.5, {1, 2}}),
              R"({"height":2.5,"marks":[1,2],"name":"high","wood":"ash"})");
    std::string const plain = R"({"marks":[],"name":"chair","wood":"oak"})";
    EXPECT_EQ(both(std::vector{Chair(), Chair()}), "[" + plain + "," + plain + "]");

    Wood wood = Wood::ash;
    convert(wood, ur::make<String>("beech"));
    EXPECT_EQ(wood, Wood::ash);
    EXPECT_FALSE(hasShape<Chair>(dictionary({{"name", "no marks"}, {"wood", "oak"}})));
    EXPECT_FALSE(hasShape<Chair>(array({})));
    std::array<int, 2> two{};
    convert(two, array({1, 2, 3}));
    EXPECT_EQ(two[1], 2);
    convert(two, array({9}));
    EXPECT_EQ(two[0], 1);
    std::map<std::string, int> numbers{{"k", 1}};
    convert(numbers, dictionary({{"a", 1}, {"b", "text"}}));
    EXPECT_EQ(numbers.size(), 1U);
    ur::Reference<Item> item = ur::make<Bool>(true);
    convert(item, Wood::unnamed);
    EXPECT_FALSE(item);
}

TEST(Trees, DoNotHoldWhatHasNoItemForm) {
    std::uint64_t const large = 0x9E3779B97F4A7C15ULL;
    for (auto const& item :
         {itemOf(large), itemOf(Wood::unnamed), itemOf(std::vector{1UL, large}),
          itemOf(std::array{Wood::oak, Wood::unnamed}), itemOf(std::map<std::string, Wood>{{"a", Wood::unnamed}}),
          itemOf(Chair{"", Wood::unnamed, {}, {}}), itemOf(std::vector{std::optional(large)}),
          itemOf(std::vector{std::vector{large}})}) {
        EXPECT_FALSE(item);
    }
    EXPECT_EQ(printed(itemOf(std::vector{std::optional(1), std::optional<int>()})), "[1,null]");
    EXPECT_FALSE(dictionary({{"a", 1}, {"b", large}}));
    EXPECT_FALSE(dictionary({{"a", {1, Wood::unnamed}}}));
    auto const desk = dictionary({{"a", 1}, {"none", std::optional<int>()}});
    EXPECT_FALSE(desk->insert("a", large));
    EXPECT_FALSE(desk->insert("b", std::optional(Wood::unnamed)));
    EXPECT_EQ(printed(desk), "{\"a\":1}");
    auto const list = array({1});
    EXPECT_FALSE(list->insert(Wood::unnamed));
    EXPECT_TRUE(list->insert(std::optional<int>()));
    EXPECT_EQ(list->size(), 2);
}

TEST(Equality, IsByValueWhereverTreesShare) {
    ur::Reference<Item> const values[] = {nullptr,
                                          itemOf(1),
                                          itemOf(2),
                                          itemOf(true),
                                          itemOf("1"),
                                          array({}),
                                          array({1}),
                                          array({1, 1}),
                                          array({nullptr}),
                                          dictionary({}),
                                          dictionary({{"a", 1}}),
                                          dictionary({{"b", 1}}),
                                          dictionary({{"a", {1}}}),
                                          itemOf(std::nan(""))};
    for (auto const& a : values) {
        for (auto const& b : values) EXPECT_EQ(equal(a, b ? b->clone() : b), &a == &b);
    }
    ur::Reference<Item> one = array({1, 2}), two = array({1, 2}), other = array({1, 3});
    for (int i = 0; i < 60; ++i) one = array({one, one}), two = array({two, two}), other = array({other, other});
    EXPECT_TRUE(equal(one, two));
    EXPECT_FALSE(equal(one, other));
}

}  // namespace
}  // namespace nxPLST::test
