// The ordered map beside the standard's.
#include "foundation/ur/BlockMap.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <string>

#include "foundation/ur/containers.h"

namespace {

using Map = ur::BlockMap<int, std::string, ur::less<int>>;
using Model = std::map<int, std::string>;

bool same(Map const& map, Model const& model) {
    if (map.size() != model.size() || map.empty() != model.empty()) return false;
    auto forward = map.begin();
    for (auto const& [key, value] : model) {
        if (forward->first != key || forward->second != value) return false;
        ++forward;
    }
    auto backward = map.end();
    for (auto entry = model.rbegin(); entry != model.rend(); ++entry) {
        if ((--backward)->first != entry->first) return false;
    }
    return forward == map.end() && backward == map.begin();
}

/// Applies the same random steps to both: more growing or more shrinking, in turns.
class Pair {
public:
    Pair(unsigned seed, int keys) : random_(seed), keys_(keys) {}

    void step() {
        if (below(1500 + keys_) == 0) growing_ = !growing_;
        int const key = below(keys_);
        std::string const value = std::to_string(below(1000)) + " in a text of more than sixteen bytes";
        int const kind = below(10);
        if (kind < 2) return expectSameLookUps(key);
        if (growing_ != (kind == 2)) return insert(key, value);
        erase(key);
    }

    void expectSame() { ASSERT_TRUE(same(map_, model_)); }
    void copyAndMove() {
        Map copy(map_);
        EXPECT_EQ(copy, map_);
        std::size_t dropped = 0;
        map_.clear([&](std::string const& value) { dropped += value.empty() ? 0 : 1; });
        EXPECT_EQ(dropped, copy.size());
        EXPECT_TRUE(map_.empty() && map_.begin() == map_.end());
        map_ = std::move(copy);
        map_.reserve(static_cast<std::size_t>(below(keys_)));
    }

private:
    void insert(int key, std::string const& value) {
        switch (below(6)) {
            case 0: EXPECT_EQ(map_.try_emplace(key, value).second, model_.try_emplace(key, value).second); break;
            case 1: EXPECT_EQ(map_.insert({key, value}).second, model_.insert({key, value}).second); break;
            case 2: map_[key] = model_[key] = value; break;
            case 4: map_.ascending(key) = model_[key] = value; break;
            case 3:
                EXPECT_EQ(map_.emplace_hint(map_.lower_bound(below(keys_)), key, value)->first, key);
                model_.emplace(key, value);
                break;
            default: {
                auto const entry = map_.insert_or_assign(key, value).first;
                EXPECT_EQ(entry->second, value);
                model_.insert_or_assign(key, value);
            }
        }
    }
    void erase(int key) {
        if (below(2) == 0) {
            EXPECT_EQ(map_.erase(key), model_.erase(key));
            return;
        }
        auto entry = map_.lower_bound(key);
        auto expected = model_.lower_bound(key);
        for (int run = below(20) == 0 ? below(200) : 1; run > 0 && expected != model_.end(); --run) {
            entry = map_.erase(entry);
            expected = model_.erase(expected);
        }
        expectAt(entry, expected);
    }
    void expectSameLookUps(int key) {
        expectAt(map_.find(key), model_.find(key));
        expectAt(map_.lower_bound(key), model_.lower_bound(key));
        expectAt(map_.upper_bound(key), model_.upper_bound(key));
        EXPECT_EQ(map_.contains(key), model_.contains(key));
    }
    void expectAt(Map::iterator entry, Model::iterator expected) {
        ASSERT_EQ(entry == map_.end(), expected == model_.end());
        if (expected == model_.end()) return;
        EXPECT_EQ(entry->first, expected->first);
    }
    int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }

    std::mt19937 random_;
    int keys_;
    bool growing_ = true;
    Map map_;
    Model model_;
};

TEST(BlockMap, DoesWhatTheStandardMapDoes) {
    unsigned const seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    for (int keys : {3, 40, 200, 3000, 30000}) {
        Pair pair(seed, keys);
        for (int i = 0; i < 20000 + 5 * keys; ++i) {
            pair.step();
            if (i % 1000 == 0) pair.copyAndMove();
            if (i % 500 == 0) pair.expectSame();
        }
        pair.expectSame();
    }
}

TEST(BlockMap, HoldsManyEntriesHoweverTheyCome) {
    constexpr int many = 200000;
    ur::BlockMap<int, int, ur::less<int>> up;
    ur::BlockMap<int, int, ur::less<int>> down;
    ur::BlockMap<int, int, ur::less<int>> ascending;
    for (int i = 0; i < many; ++i) {
        up.emplaceLast(i, i);
        ascending.ascending(i) = i;
        down.emplace(many - 1 - i, many - 1 - i);
    }
    EXPECT_EQ(up, down);
    EXPECT_EQ(up, ascending);
    for (int i = 0; i < many; i += 2) up.erase(i);
    EXPECT_EQ(up.size(), many / 2U);
    EXPECT_EQ(up.begin()->first, 1);
    EXPECT_EQ(up.find(many - 1)->second, many - 1);
}

// Blocks are listed under keys of entries that may have gone: what comes in their place may be before those.
TEST(BlockMap, FindsWhatReplacesWholeBlocks) {
    constexpr int many = 20000;
    constexpr int gap = 300;
    ur::BlockMap<int, int, ur::less<int>> map;
    for (int i = 0; i < many; ++i) map.emplaceLast(i, i);
    for (int from = 0; from + gap <= many; from += gap / 5) {
        for (int i = from; i < from + gap; ++i) ASSERT_EQ(map.erase(i), 1U);
        for (int i = from + gap; i-- > from;) ASSERT_EQ(map.emplace_hint(map.lower_bound(i), i, i)->second, i);
    }
    for (int i = many; i-- > 0;) ASSERT_EQ(i % 8 == 0 ? map.count(i) : map.erase(i), 1U) << i;
    for (int i = 0; i < many; ++i) ASSERT_EQ(map.count(i), i % 8 == 0 ? 1U : 0U) << i;
}

TEST(BlockMap, MovesWhatCannotBeCopied) {
    ur::BlockMap<int, std::unique_ptr<int>, ur::less<int>> map;
    map.reserve(20);
    for (int i = 0; i < 200; ++i) map.try_emplace(i * 7 % 200, std::make_unique<int>(i * 7 % 200));
    auto moved = std::move(map);
    EXPECT_EQ(moved.size(), 200U);
    for (auto const& [key, value] : moved) EXPECT_EQ(key, *value);
    EXPECT_EQ(sizeof moved, sizeof(void*));
}

TEST(BlockMap, LetsWhatIsErasedComeBackToIt) {
    ur::map<int, std::shared_ptr<void>> map;
    map[1] = std::shared_ptr<void>(&map, [&map](void*) {
        map.erase(2);
        map[3] = nullptr;
    });
    map[2] = nullptr;
    map.erase(1);
    EXPECT_EQ(map.size(), 1U);
    EXPECT_TRUE(map.contains(3));
}

}  // namespace
