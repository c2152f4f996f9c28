// Tests sharing, copying, comparing, casts and depth of item trees.
#include <gtest/gtest.h>

#include <thread>

#include "foundation/ur/tests/smallStack.h"
#include "plst/casts.h"
#include "plst/tests/trees.h"
#include "plst/visit.h"

namespace {

using namespace nxPLST;
using namespace nxPLST::test;

Reference<Item> number(double value) { return make<Double>(value); }
Reference<Item> text(char const* value) { return make<String>(value); }

/// Nests arrays and dictionaries alternately, `depth` levels around a number.
Reference<Item> nested(int depth) {
    Reference<Item> item = number(1);
    for (int i = 0; i < depth; ++i) item = i % 2 ? Reference<Item>(dictionaryOf({{"k", item}})) : arrayOf({item});
    return item;
}

TEST(Dictionary, KeepsOneValuePerKeyInKeyOrder) {
    auto dictionary = make<Dictionary>();
    EXPECT_TRUE(dictionary->get("x").null());
    for (char const* key : {"b", "a", "c", "a"}) dictionary->insert(key, text(key));
    auto const last = number(2);
    dictionary->insert("a", last);
    EXPECT_EQ(dictionary->size(), 3);
    EXPECT_EQ(dictionary->find("a"), last);
    std::string keys;
    for (auto const& entry : dictionary->dictionary()) keys += entry.first.c_str();
    EXPECT_EQ(keys, "abc");
}

TEST(Visit, CallsTheFunctionOfTheItemsClass) {
    struct Unknown final : Item {
        Unknown() : Item(static_cast<Type>(7)) {}
        Reference<Item> onClone() const override { return nullptr; }
    };
    auto const kind = [](Item const& item) {
        return visit(
            item, [](Double const& number) { return std::to_string(number.value()); },
            [](Array const& array) { return std::string(array.size(), 'a'); },
            [](Item const&) { return std::string("other"); });
    };
    EXPECT_EQ(kind(*number(2)), "2.000000");
    EXPECT_EQ(kind(*arrayOf({text("x"), text("y")})), "aa");
    EXPECT_EQ(kind(*text("x")) + kind(*make<Dictionary>()) + kind(*make<Bool>(true)), "otherotherother");
    EXPECT_EQ(kind(*make<Unknown>()), "");
}

TEST(Clone, UnsharesEveryOccurrence) {
    auto const shared = text("a");
    auto const original = arrayOf({shared, shared, dictionaryOf({{"k", shared}})});
    auto const copy = asArray(original->clone());
    ASSERT_EQ(copy->size(), 3);
    EXPECT_EQ(shared->referenceCount(), 4);
    asString(copy->objectAt(0))->set("changed");
    EXPECT_STREQ(asString(copy->objectAt(1))->value().c_str(), "a");
    EXPECT_STREQ(asString(asDictionary(copy->objectAt(2))->get("k"))->value().c_str(), "a");
    EXPECT_TRUE(copy->congruent(*original));
    original->clear();
    EXPECT_EQ(shared->referenceCount(), 1);
}

TEST(Congruent, ComparesShapesAndNeverValues) {
    auto const pair = arrayOf({number(1), text("a")});
    struct {
        Reference<Item> a, b;
        bool expected;
    } const cases[] = {
        {number(1), number(7), true},
        {number(1), make<Bool>(true), false},
        {pair, arrayOf({number(9), text("z")}), true},
        {pair, arrayOf({text("z"), number(9)}), false},
        {pair, arrayOf({number(1)}), false},
        {arrayOf({number(1)}), pair, false},
        {pair, make<Bool>(), false},
        {arrayOf({}), arrayOf({}), true},
        {arrayOf({}), make<Dictionary>(), false},
        {arrayOf({nullptr}), arrayOf({nullptr}), true},
        {arrayOf({nullptr}), arrayOf({number(1)}), false},
        {dictionaryOf({{"a", number(1)}}), dictionaryOf({{"b", number(1)}}), false},
        {dictionaryOf({{"a", pair}}), dictionaryOf({{"a", arrayOf({number(0), text("")})}}), true},
        {dictionaryOf({{"a", pair}}), dictionaryOf({{"a", arrayOf({number(0), number(0)})}}), false},
    };
    for (auto const& one : cases) EXPECT_EQ(one.a->congruent(*one.b), one.expected) << (&one - cases);
}

TEST(Casts, NeverConvert) {
    EXPECT_TRUE(asDouble(make<Bool>(true)).null());
    EXPECT_TRUE(asDouble(nullptr).null());
    EXPECT_EQ(asDouble(new Double(3))->value(), 3);
    Reference<Item const> item = number(3);
    EXPECT_EQ(asDouble(item).get(), item.get());
    EXPECT_EQ(item->referenceCount(), 1);
}

TEST(Depth, AMillionLevelsFitASmallStack) {
    ::test::onSmallStack(
        [] {
            Reference<Item> const deep = nested(1000000);
            Reference<Item> const copy = deep->clone();
            EXPECT_TRUE(copy->congruent(*deep));
            EXPECT_FALSE(copy->congruent(*nested(1000001)));
        },
        ::test::leastStack);
}

TEST(Depth, DestructionReachesSharedAndUnsharedChildrenOnce) {
    auto const kept = text("kept");
    {
        Reference<Item> item = kept;
        for (int i = 0; i < 5000; ++i) item = arrayOf({item, kept, dictionaryOf({{"k", arrayOf({kept, item})}})});
    }
    EXPECT_EQ(kept->referenceCount(), 1);
}

TEST(Trees, MayBeDestroyedOnAnotherThread) {
    Reference<Item> tree;
    std::thread([&tree] { tree = nested(10000); }).join();
    EXPECT_EQ(tree->referenceCount(), 1);
    std::thread([tree = std::move(tree)]() mutable { tree.reset(); }).join();
}

}  // namespace
