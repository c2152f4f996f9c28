// Tests the ordered map: its structure in every state that few keys reach, and its entries against std::map.
#include "foundation/ur/BlockMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <stdexcept>
#include <string>

#include "foundation/ur/containers.h"
#include "foundation/ur/tests/MapAudit.h"
#include "foundation/ur/tests/MapPlay.h"

namespace {

using ur::test::MapKey;
using ur::test::MapPlay;

template <std::uint32_t blockSize, std::uint32_t fanOut>
using Small = ur::BlockMap<MapKey, int, ur::less<MapKey>, blockSize, fanOut>;

template <class Map>
std::string faults(Map const& map) {
    return ur::impl::MapAudit<Map>::faults(map);
}

/// Every state that inserting and erasing `keys` different keys in any order can reach. All orders are paths through
/// these states.
template <class Map>
class States {
public:
    explicit States(int keys) : keys_(keys) {
        expand({});
        for (std::size_t i = 0; i < paths_.size() && !testing::Test::HasFailure(); ++i) {
            for (int key = 0; key < keys_; ++key) {
                std::vector<int> path = paths_[i];
                path.push_back(key);
                expand(path);
            }
        }
    }
    [[nodiscard]] std::uint32_t levels() const { return levels_; }

private:
    /// Inserts each key of the path, or erases it if it exists.
    void expand(std::vector<int> const& path) {
        Map map;
        for (int key : path) {
            if (map.erase(key) == 0) map.try_emplace(key, key);
        }
        std::string const fault = faults(map);
        ASSERT_EQ(fault, "") << testing::PrintToString(path);
        levels_ = std::max(levels_, ur::impl::MapAudit<Map>::levels(map));
        if (seen_.insert(ur::impl::MapAudit<Map>::structure(map)).second) paths_.push_back(path);
    }

    int keys_;
    std::uint32_t levels_ = 0;
    std::vector<std::vector<int>> paths_;
    std::set<std::string> seen_;
};

TEST(BlockMap, IsSoundInEveryStateThatFewKeysReach) {
    EXPECT_EQ((States<Small<2, 3>>(9).levels()), 4U);
    EXPECT_EQ((States<Small<3, 3>>(8).levels()), 3U);
    EXPECT_EQ((States<Small<4, 5>>(9).levels()), 2U);
    EXPECT_EQ(MapKey::alive, 0) << "in maps that have gone";
}

constexpr int manyKeys = 100;

/// Orders of the keys from 0 to `manyKeys` - 1.
std::vector<std::vector<int>> orders() {
    std::vector<int> up(manyKeys);
    std::iota(up.begin(), up.end(), 0);
    std::vector<int> const down(up.rbegin(), up.rend());
    std::vector<int> inwards;                                    // from both ends
    std::vector<int> outwards;                                   // from the middle
    std::vector<int> drifting;                                   // downwards, with small upward steps
    std::vector<int> high(up.begin() + manyKeys / 2, up.end());  // then all lower ones in random order
    for (int i = 0; i < manyKeys / 2; ++i) {
        inwards.insert(inwards.end(), {i, manyKeys - 1 - i});
        outwards.insert(outwards.end(), {manyKeys / 2 + i, manyKeys / 2 - 1 - i});
    }
    for (int from = manyKeys; from > 0; from -= 5) drifting.insert(drifting.end(), &up[from - 5], &up[from - 5] + 5);
    std::vector<int> clustered = up;  // by last digit
    std::stable_sort(clustered.begin(), clustered.end(), [](int a, int b) { return a % 10 < b % 10; });
    std::vector<int> mixed = up;
    std::shuffle(mixed.begin(), mixed.end(), std::mt19937(5));
    for (int key : mixed) {
        if (key < manyKeys / 2) high.push_back(key);
    }
    return {up, down, inwards, outwards, drifting, high, clustered, mixed};
}

template <class Map>
using Insert = std::function<void(Map&, int)>;

template <class Map>
std::vector<Insert<Map>> waysToInsert() {
    return {[](Map& map, int key) { map.try_emplace(key, key); },
            [](Map& map, int key) { map.try_emplace(map.lower_bound(key), key, key); },
            [](Map& map, int key) { map.try_emplace(map.begin(), key, key); },
            [](Map& map, int key) { map.try_emplace(map.lower_bound(key / 2), key, key); },
            [](Map& map, int key) { map.ascending(key) = key; },
            [](Map& map, int key) {
                bool const isLast = map.empty() || std::prev(map.end())->first.value < key;
                isLast ? void(map.emplaceLast(key, key)) : void(map[key] = key);
            }};
}

/// Builds a map in one order and empties it in another; audits it after each step.
template <class Map>
void buildAndTakeApart(std::vector<int> const& in, std::vector<int> const& out, Insert<Map> const& insert) {
    Map map;
    for (int key : in) {
        insert(map, key);
        insert(map, key);
        ASSERT_EQ(faults(map), "");
    }
    ASSERT_EQ(map.size(), manyKeys + 0U);
    ASSERT_GE(ur::impl::MapAudit<Map>::levels(map), 4U);
    Map copy;
    copy.copyWith(map, [](int value) { return value + 1; });
    ASSERT_EQ(faults(copy), "");
    for (int key : out) {
        ASSERT_EQ(map.erase(key), 1U);
        ASSERT_EQ(copy.find(key)->second, key + 1);
        copy.erase(copy.find(key));
        ASSERT_EQ(faults(map) + faults(copy), "");
    }
    EXPECT_TRUE(map.empty() && copy.empty());
}

template <class Map>
void buildInAllWays() {
    auto const runs = orders();
    for (auto const& insert : waysToInsert<Map>()) {
        for (std::size_t i = 0; i < runs.size(); ++i) {
            SCOPED_TRACE(i);
            for (std::size_t step : {1, 4}) buildAndTakeApart<Map>(runs[i], runs[(i + step) % runs.size()], insert);
        }
    }
}

TEST(BlockMap, StaysSoundHoweverKeysComeAndGo) {
    buildInAllWays<Small<2, 3>>();
    buildInAllWays<Small<3, 3>>();
    buildInAllWays<Small<4, 5>>();
}

TEST(BlockMap, FillsItsNodesWhenKeysAscend) {
    using Map = Small<2, 5>;
    Map map;
    for (int i = 0; i < 60; ++i) map[i] = i;
    std::string const nodes = ur::impl::MapAudit<Map>::structure(map);
    EXPECT_EQ(std::count(nodes.begin(), nodes.end(), '['), 30);
    EXPECT_EQ(std::count(nodes.begin(), nodes.end(), '('), 8 + 2 + 1) << "four of five children in each but the last";
}

/// With an audit at regular intervals.
template <std::uint32_t blockSize, std::uint32_t fanOut>
void playRandomly(unsigned seed, unsigned keys, int steps, int auditEvery) {
    SCOPED_TRACE("seed " + std::to_string(seed) + ", keys " + std::to_string(keys));
    std::mt19937 random(seed);
    MapPlay<blockSize, fanOut> both([&] { return static_cast<unsigned>(random()); }, keys);
    for (int i = 1; i <= steps; ++i) {
        ASSERT_EQ(both.step(), "") << i;
        if (i % auditEvery == 0) {
            ASSERT_EQ(both.audit(), "") << i;
        }
    }
}

TEST(BlockMap, DoesWhatTheStandardMapDoes) {
    unsigned const seed = std::random_device()();
    playRandomly<2, 3>(seed, 25, 100000, 1);
    playRandomly<3, 3>(seed, 35, 80000, 1);
    playRandomly<4, 5>(seed, 60, 60000, 1);
    playRandomly<2, 3>(seed, 2000, 100000, 997);
    playRandomly<64, 64>(seed, 40, 10000, 1);
    playRandomly<64, 64>(seed, 30000, 1000000, 49999);
}

// At realistic sizes.
TEST(BlockMap, FindsEveryOneOfManyEntries) {
    constexpr int many = 200000;
    using Map = ur::map<int, int>;
    Map up;
    Map down;
    Map lower;
    for (int i = many; i < many + 65; ++i) lower[i] = i;
    for (int i = 0; i < many; ++i) {
        up.emplaceLast(i, i);
        down.try_emplace(many - 1 - i, many - 1 - i);
        lower[static_cast<int>(i * 7919LL % many)] = i;
    }
    EXPECT_EQ(up, down);
    EXPECT_EQ(lower.size(), many + 65U);
    EXPECT_EQ(faults(up) + faults(down) + faults(lower), "");
    for (int i = 0; i < many; i += 2) up.erase(i);
    EXPECT_EQ(faults(up), "");
}

/// Runs `act` with one more copy of a key succeeding each time, until nothing fails.
template <class Act>
void withFailingCopies(Act const& act) {
    bool failed = true;
    for (int copies = 0; failed && !testing::Test::HasFailure(); ++copies) failed = act(copies);
}

/// Whether `act` threw when only `copies` copies of keys succeeded.
template <class Act>
bool fails(int copies, Act const& act) {
    MapKey::copiesLeft = copies;
    bool failed = false;
    try {
        act();
    } catch (std::bad_alloc const&) {
        failed = true;
    }
    MapKey::copiesLeft = -1;
    return failed;
}

TEST(BlockMap, StaysWholeWhenTheCopyOfAKeyFails) {
    using Map = Small<2, 3>;
    std::array<void (*)(Map&, MapKey const&), 5> const ways = {
        [](Map& map, MapKey const& key) { map[key] = 0; }, [](Map& map, MapKey const& key) { map.ascending(key) = 0; },
        [](Map& map, MapKey const& key) { map.try_emplace(map.lower_bound(key), key, 0); },
        [](Map& map, MapKey const& key) { map.try_emplace(map.begin(), key, 0); },
        [](Map& map, MapKey const& key) {
            bool const isLast = map.empty() || std::prev(map.end())->first < key;
            isLast ? map.emplaceLast(key, 0) : map.try_emplace(map.end(), key, 0);
        }};
    for (int size = 0; size < 40; ++size) {
        for (int at = -1; at <= 2 * size; at += 2) {
            for (auto const way : ways) {
                withFailingCopies([&](int copies) {
                    Map map;
                    for (int i = 0; i < size; ++i) map[2 * i] = i;
                    MapKey const key(at);
                    bool const failed = fails(copies, [&] { way(map, key); });
                    EXPECT_EQ(faults(map), "") << size << " " << at;
                    EXPECT_EQ(map.size() + failed, size + 1U);
                    return failed;
                });
            }
        }
        withFailingCopies([&](int copies) {
            Map map;
            for (int i = 0; i < size; ++i) map[i] = i;
            Map filled;
            bool const failed = fails(copies, [&] { filled.copyWith(map, [](int value) { return value; }); });
            EXPECT_EQ(faults(filled), "") << size;
            EXPECT_TRUE(failed ? filled.size() < map.size() : filled == map);
            return failed;
        });
    }
}

TEST(BlockMap, ErasesWithoutCopiesOfKeys) {
    using Map = Small<4, 5>;
    auto const runs = orders();
    for (auto const& order : runs) {
        Map map;
        for (int key : runs.back()) map[key] = key;
        for (int key : order) {
            auto const at = map.find(key);
            MapKey::copiesLeft = 0;
            map.erase(at);
            MapKey::copiesLeft = -1;
            ASSERT_EQ(ur::impl::MapAudit<Map>::faults(map, ur::impl::MapAudit<Map>::Fill::any), "");
        }
        EXPECT_TRUE(map.empty());
    }
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

TEST(BlockMap, LetsDestructorsOfErasedEntriesUseTheMap) {
    ur::map<int, std::shared_ptr<void>> map;
    map[1] = std::shared_ptr<void>(&map, [&map](void*) {
        map.erase(2);
        map[3] = nullptr;
    });
    map[2] = nullptr;
    map.erase(1);
    EXPECT_EQ(map.size(), 1U);
    EXPECT_TRUE(map.contains(3));
    EXPECT_THROW((void)map.at(2), std::out_of_range);
}

}  // namespace
