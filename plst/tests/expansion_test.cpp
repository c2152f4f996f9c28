// Tests the expanded sizes of trees that share items.

#include <filesystem>
#include <limits>

#include "foundation/ur/tests/TemporaryFolder.h"
#include "foundation/ur/tests/smallStack.h"
#include "plst/json.h"
#include "plst/tests/trees.h"

namespace nxPLST {
namespace {

using namespace test;

std::uint64_t itemsIn(Item const* item) {
    std::uint64_t items = 1;
    if (item && item->type() == ArrayType) {
        for (auto const& child : static_cast<Array const*>(item)->array()) items += itemsIn(child.get());
    } else if (item && item->type() == DictionaryType) {
        for (auto const& entry : static_cast<Dictionary const*>(item)->dictionary())
            items += itemsIn(entry.second.get());
    }
    return items;
}

TEST(Expansion, IsTheSizeOfTheTextOfAnyTree) {
    bool seenSharing = false;
    for (unsigned seed = 0; seed < 2000; ++seed) {
        auto const tree = RandomTrees(seed).sharingTree(6);
        urString::CString text;
        ASSERT_TRUE(convertToJSON(text, tree));
        Expansion const expansion = expansionOf(tree.get());
        ASSERT_EQ(expansion.textBytes, text.size()) << "seed " << seed << "\n" << text.c_str();
        ASSERT_EQ(expansion.items, itemsIn(tree.get())) << "seed " << seed;
        seenSharing = seenSharing || expansion.shares;
        auto const copy = tree ? tree->clone() : nullptr;
        Expansion const ofCopy = expansionOf(copy.get());
        EXPECT_FALSE(ofCopy.shares);
        EXPECT_EQ(ofCopy.ownTextBytes, expansion.textBytes);
        EXPECT_EQ(expansion.ownTextBytes < expansion.textBytes, expansion.shares);
    }
    EXPECT_TRUE(seenSharing);
}

TEST(Expansion, CountsToTheLargestNumberInNoTime) {
    EXPECT_EQ(expansionOf(doubled(60, make<Bool>(true)).get()).items, (std::uint64_t(1) << 61) - 1);
    EXPECT_LT(expansionOf(doubled(60, make<Bool>(true)).get()).ownTextBytes, 30'000U);
    for (int levels : {64, 100, 5000}) {
        Expansion const expansion = expansionOf(doubled(levels, make<Bool>(true)).get());
        EXPECT_EQ(expansion.items, std::numeric_limits<std::uint64_t>::max());
        EXPECT_EQ(expansion.textBytes, std::numeric_limits<std::uint64_t>::max());
        EXPECT_TRUE(expansion.shares);
    }
    ::test::onSmallStack([] {
        Reference<Item> tree = make<Double>(1);
        for (int i = 0; i < ::test::manyLevels; ++i) tree = arrayOf({tree});
        Expansion const expansion = expansionOf(tree.get());
        EXPECT_EQ(expansion.items, ::test::manyLevels + 1U);
        EXPECT_FALSE(expansion.shares);
    });
}

TEST(Expansion, BeyondTheLimitIsNotWritten) {
    auto const longText = make<String>(urString::CString(std::string(1 << 20, 'x')));
    auto const textAThousandTimes = make<Array>();
    while (textAThousandTimes->size() < 1000) textAThousandTimes->insert(longText);
    for (Reference<Item> const& tree : {doubled(60, make<Bool>(true)), Reference<Item>(textAThousandTimes)}) {
        urString::CString text = "before ";
        EXPECT_FALSE(convertToJSON(text, tree));
        EXPECT_LT(text.size(), 20U << 20);
        EXPECT_LT(asJSON(tree).size(), 20U << 20);
        ::test::TemporaryFolder const folder;
        EXPECT_FALSE(outputJSON((folder / "dump").string().c_str(), tree));
        EXPECT_FALSE(std::filesystem::exists(folder / "dump"));
    }
}

TEST(Expansion, IsLimitedToTheByteAndOnlyWhereSomethingIsShared) {
    auto const tree = doubled(6, make<String>("a text that is longer than a block"));
    std::uint64_t const bytes = expansionOf(tree.get()).textBytes;
    urString::CString text;
    EXPECT_FALSE(convertToJSON(text, tree, bytes - 1));
    text.clear();
    EXPECT_TRUE(convertToJSON(text, tree, bytes));
    EXPECT_EQ(text.size(), bytes);
    EXPECT_EQ(asJSON(tree, bytes), asJSON(tree));
    EXPECT_LT(asJSON(tree, 100).size(), 200U);
    text.clear();
    EXPECT_TRUE(convertToJSON(text, tree->clone(), 10));
    EXPECT_EQ(text.size(), bytes);
}

}  // namespace
}  // namespace nxPLST
