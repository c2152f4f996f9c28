// Tests the ordered map: its structure in every state that few keys reach, and its entries against std::map.
#include "foundation/ur/BlockMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <set>
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

/// Whether `act` throws when only `copies` copies of keys succeed.
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
    std::array<void (*)(Map&, MapKey const&), 4> const ways = {
        [](Map& map, MapKey const& key) { map[key] = 0; }, [](Map& map, MapKey const& key) { map.ascending(key) = 0; },
        [](Map& map, MapKey const& key) { map.try_emplace(map.begin(), key, 0); },
        [](Map& map, MapKey const& key) {
            bool const isLast = map.empty() || std::prev(map.end())->first < key;
            isLast ? map.emplaceLast(key, 0) : map.try_emplace(map.end(), key, 0);
        }};
    for (int size = 0; size < 40; ++size) {
        Map map;
        for (int i = 0; i < size; ++i) map[2 * i] = i;
        bool failed = true;
        for (int copies = 0; failed && !HasFailure(); ++copies) {
            Map copy;
            failed = fails(copies, [&] { copy.copyWith(map, [](int value) { return value; }); });
            EXPECT_EQ(faults(copy), "") << size;
            EXPECT_TRUE(failed ? copy.size() < map.size() : copy == map);
        }
        for (int at = -1; at <= 2 * size; at += 2) {
            for (auto const way : ways) {
                failed = true;
                for (int copies = 0; failed && !HasFailure(); ++copies) {
                    Map changed(map);
                    MapKey const key(at);
                    failed = fails(copies, [&] { way(changed, key); });
                    EXPECT_EQ(faults(changed), "") << size << " " << at;
                    EXPECT_EQ(changed.size() + failed, size + 1U);
                }
            }
        }
    }
}

TEST(BlockMap, ErasesWithoutCopiesOfKeys) {
    using Map = Small<4, 5>;
    std::mt19937 random(5);
    std::vector<int> keys(100);
    std::iota(keys.begin(), keys.end(), 0);
    for (int round = 0; round < 10; ++round) {
        Map map;
        std::shuffle(keys.begin(), keys.end(), random);
        for (int const key : keys) map[key] = key;
        std::shuffle(keys.begin(), keys.end(), random);
        for (int const key : keys) {
            MapKey const erased(key);
            EXPECT_FALSE(fails(0, [&] { map.erase(erased); }));
            ASSERT_EQ(ur::impl::MapAudit<Map>::faults(map, ur::impl::MapAudit<Map>::Fill::any), "");
        }
        EXPECT_TRUE(map.empty());
    }
}

TEST(BlockMap, MovesWhatCannotBeCopied) {
    ur::BlockMap<int, std::unique_ptr<int>, ur::less<int>> map;
    for (int i = 0; i < 200; ++i) map.try_emplace(i * 7 % 200, std::make_unique<int>(i * 7 % 200));
    auto const moved = std::move(map);
    EXPECT_EQ(moved.size(), 200U);
    for (auto const& [key, value] : moved) EXPECT_EQ(key, *value);
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
}

}  // namespace
