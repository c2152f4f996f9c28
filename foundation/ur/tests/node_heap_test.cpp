// Tests the node storage: reuse, order, freeing across threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <latch>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "foundation/ur/BlockAllocator.h"
#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/NodeSource.h"
#include "foundation/ur/impl/Region.h"

namespace {

using ur::impl::Region;
using ur::impl::RegionSource;

std::vector<void*> take(std::size_t count, std::size_t bytes) {
    std::vector<void*> nodes(count);
    for (void*& node : nodes) {
        node = ur::allocateNode(bytes);
        std::fill_n(static_cast<unsigned char*>(node), bytes, static_cast<unsigned char>(bytes));
    }
    return nodes;
}

void giveBack(std::vector<void*> const& nodes, std::size_t bytes) {
    for (void* node : nodes) ur::deallocateNode(node, bytes);
}

/// The number of chunks that the heaps of all threads hold; 0 under AddressSanitizer.
std::size_t chunksHeld() { return RegionSource::instance().chunkCount(); }

std::size_t countDistinct(std::vector<void*> const& nodes) {
    return std::set<void*>(nodes.begin(), nodes.end()).size();
}

TEST(NodeHeap, RandomTrafficNeverOverlaps) {
    std::mt19937 random(7);
    struct Held {
        unsigned char* node;
        std::size_t bytes;
        unsigned char mark;
    };
    std::vector<Held> held;
    for (int step = 0; step < 200000; ++step) {
        if (held.empty() || random() % 5 < 3) {
            std::size_t const bytes = random() % 300;
            auto* node = static_cast<unsigned char*>(ur::allocateNode(bytes));
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(node) % (bytes > 0 && bytes % 16 == 0 ? 16 : 8), 0U);
            auto const mark = static_cast<unsigned char>(random());
            std::fill_n(node, bytes, mark);
            held.push_back({node, bytes, mark});
        } else {
            std::swap(held[random() % held.size()], held.back());
            Held const last = held.back();
            ASSERT_EQ(std::count(last.node, last.node + last.bytes, last.mark), static_cast<long>(last.bytes));
            ur::deallocateNode(last.node, last.bytes);
            held.pop_back();
        }
    }
    for (Held const& one : held) ur::deallocateNode(one.node, one.bytes);
}

TEST(NodeHeap, GivesClassesTheirAlignment) {
    struct alignas(128) Wide : ur::NodeAllocated {
        char text[300];
    };
    std::vector<std::unique_ptr<Wide>> objects(50);
    for (auto& object : objects) {
        object = std::make_unique<Wide>();
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(object.get()) % 128, 0U);
    }
}

TEST(NodeHeap, NodesMadeOnOneThreadAndDroppedOnAnotherDoNotAddUp) {
    constexpr std::size_t count = 20000;
    std::size_t const before = chunksHeld();
    for (int round = 0; round < 30; ++round) {
        std::vector<void*> nodes;
        std::thread([&nodes] { nodes = take(count, 48); }).join();
        giveBack(nodes, 48);
        nodes = take(count, 48);
        std::thread([&nodes] { giveBack(nodes, 48); }).join();
    }
    EXPECT_LE(chunksHeld(), before + 8) << "a round holds four chunks";
    // Threads that end at the same time each leave a heap for later threads.
    for (int round = 0; round < 40; ++round) {
        std::latch both(2);
        auto const work = [&both] {
            giveBack(take(100, 40), 40);
            both.arrive_and_wait();
        };
        std::thread other(work);
        std::thread(work).join();
        other.join();
    }
    EXPECT_LE(chunksHeld(), before + 8);
}

TEST(NodeHeap, TwoThreadsExchangeNodesWithoutLosingOne) {
    std::vector<void*> first = take(20000, 32);
    std::vector<void*> second;
    std::latch both(2);
    std::atomic<bool> returned = false;
    std::thread other([&] {
        second = take(20000, 32);
        both.arrive_and_wait();
        giveBack(first, 32);
        returned = true;
        for (int i = 0; i < 50; ++i) giveBack(take(500, 32), 32);
    });
    both.arrive_and_wait();
    while (!returned) giveBack(take(500, 32), 32);  // while the other thread gives back nodes of this one's heap
    other.join();
    giveBack(second, 32);
    std::vector<void*> const again = take(60000, 32);
    EXPECT_EQ(countDistinct(again), again.size());
    giveBack(again, 32);
}

TEST(NodeSource, SharesItsNodesWithTheHeapAndGetsThemBackFromBatches) {
    constexpr std::size_t count = 20000;
    std::vector<void*> nodes;
    auto const takeAll = [&] {
        ur::NodeSource source;
        for (std::size_t i = 0; i < count; ++i) nodes.push_back(i % 3 ? source.take<40>() : ur::allocateNode(40));
        EXPECT_EQ(countDistinct(nodes), count);
    };
    auto const giveBackAll = [&] {
        std::shuffle(nodes.begin() + count / 2, nodes.end(), std::mt19937(3));
        ur::NodeBatch batch;
        for (std::size_t i = 0; i < count; ++i) i % 5 ? batch.add(nodes[i]) : ur::deallocateNode(nodes[i], 40);
        nodes.clear();
    };
    for (int round = 0; round < 3; ++round) {
        takeAll();
        giveBackAll();
        std::thread(takeAll).join();
        giveBackAll();
        takeAll();
        std::thread(giveBackAll).join();
    }
}

TEST(RegionSource, FillsItsChunksAndKeepsOneEmptyOne) {
    static auto& source = *new RegionSource;
    std::mt19937 random(5);
    std::vector<Region*> held;
    std::map<ur::impl::Chunk*, std::size_t> used;
    std::size_t fullChunk = 0;
    for (int step = 0; step < 20000; ++step) {
        std::size_t const chunks = source.chunkCount();
        if (held.empty() || random() % 100 < (step / 1000 % 2 ? 40U : 60U)) {
            held.push_back(source.take());
            fullChunk = std::max(fullChunk, ++used[held.back()->chunk]);
            bool const isNewChunk = source.chunkCount() > chunks && chunks > 0;
            ASSERT_TRUE(!isNewChunk || held.size() == chunks * fullChunk + 1) << "there was room in the others";
        } else {
            std::swap(held[random() % held.size()], held.back());
            auto const place = used.find(held.back()->chunk);
            if (--place->second == 0) used.erase(place);
            source.put(held.back());
            held.pop_back();
        }
        ASSERT_LE(source.chunkCount() - used.size(), 1U);
    }
    EXPECT_EQ(std::set<Region*>(held.begin(), held.end()).size(), held.size());
    for (Region* const region : held) source.put(region);
    EXPECT_EQ(source.chunkCount(), 1U);
}

TEST(NodeHeap, FillsTheGapsOfItsRegionsBeforeItTakesMore) {
    std::size_t const before = chunksHeld();
    std::vector<void*> nodes = take(40000, 40);
    std::vector<void*> kept;
    for (std::size_t i = 0; i < nodes.size(); ++i) i % 2 ? kept.push_back(nodes[i]) : ur::deallocateNode(nodes[i], 40);
    std::size_t const chunks = chunksHeld();
    nodes = take(20000, 40);
    EXPECT_EQ(chunksHeld(), chunks);
    giveBack(nodes, 40);
    giveBack(kept, 40);
    EXPECT_LE(chunksHeld(), before + 2);
}

TEST(BlockAllocator, HandsOutDistinctNodesInOrderAndReusesWhatCameBack) {
    ur::BlockAllocator nodes(24, 10);
    std::vector<void*> taken;
    for (int i = 0; i < 25; ++i) taken.push_back(nodes.allocate());
    EXPECT_EQ(countDistinct(taken), 25U);
    EXPECT_TRUE(std::is_sorted(taken.begin(), taken.begin() + 10));
    nodes.deallocate(taken[3]);
    EXPECT_EQ(nodes.allocate(), taken[3]);
    EXPECT_EQ(nodes.size(), 25U);
    ur::BlockAllocator one(24, 0);
    EXPECT_NE(one.allocate(), one.allocate());
}

}  // namespace
