// Tests the node storage: reuse, order, freeing across threads.
#include <gtest/gtest.h>

#if defined(__linux__)
#include <unistd.h>
#endif

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <fstream>
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

#if defined(__linux__)

long residentKiB() {
    long pages = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * sysconf(_SC_PAGESIZE) / 1024;
}

TEST(NodeHeap, GivesClassesTheirAlignment) {
    struct Base : ur::NodeAllocated {
        virtual ~Base() = default;
    };
    struct Plain : Base {
        char text[100];
    };
    struct alignas(128) Wide : Base {
        char text[300];
    };
    std::vector<std::unique_ptr<Base>> objects;
    for (int i = 0; i < 50; ++i) {
        objects.push_back(std::make_unique<Plain>());
        objects.push_back(std::make_unique<Wide>());
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(objects.back().get()) % 128, 0U);
    }
}

TEST(NodeHeap, NodesMadeOnOneThreadAndDroppedOnAnotherDoNotAddUp) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "freed memory stays in quarantine, which alone is larger than the bound";
#endif
    constexpr std::size_t count = 100000;
    giveBack(take(count, 48), 48);
    long const before = residentKiB();
    for (int round = 0; round < 30; ++round) {
        std::vector<void*> nodes;
        std::thread([&nodes] { nodes = take(count, 48); }).join();
        giveBack(nodes, 48);
        nodes = take(count, 48);
        std::thread([&nodes] { giveBack(nodes, 48); }).join();
    }
    // One round holds 4.8 MB; thirty rounds without reuse would hold more than 250 MB.
    EXPECT_LT(residentKiB() - before, 64 * 1024);
}

#endif

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
    std::vector<void*> again = take(60000, 32);
    EXPECT_EQ(std::set<void*>(again.begin(), again.end()).size(), again.size());
    giveBack(again, 32);
}

TEST(NodeSource, SharesItsNodesWithTheHeapAndGetsThemBackFromBatches) {
    constexpr std::size_t count = 20000;
    std::vector<void*> nodes;
    auto const takeAll = [&] {
        ur::NodeSource source;
        for (std::size_t i = 0; i < count; ++i) nodes.push_back(i % 3 ? source.take<40>() : ur::allocateNode(40));
    };
    auto const giveBackAll = [&] {
        EXPECT_EQ(std::set<void*>(nodes.begin(), nodes.end()).size(), count);
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

using ur::impl::Region;
using ur::impl::RegionSource;

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
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "each node is an allocation of its own";
#endif
    std::size_t const before = RegionSource::instance().chunkCount();
    std::vector<void*> nodes = take(40000, 40);
    std::vector<void*> kept;
    for (std::size_t i = 0; i < nodes.size(); ++i) i % 2 ? kept.push_back(nodes[i]) : ur::deallocateNode(nodes[i], 40);
    std::size_t const chunks = RegionSource::instance().chunkCount();
    nodes = take(20000, 40);
    EXPECT_EQ(RegionSource::instance().chunkCount(), chunks);
    giveBack(nodes, 40);
    giveBack(kept, 40);
    EXPECT_LE(RegionSource::instance().chunkCount(), before + 1);
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
    EXPECT_LE(RegionSource::instance().chunkCount(), before + 2);
}

TEST(NodeBatch, GivesBackNoMoreThanItsNodes) {
    std::vector<void*> nodes = take(20000, 40);
    std::sort(nodes.begin(), nodes.end());
    std::vector<void*> const kept(nodes.begin() + 10000, nodes.end());
    nodes.resize(10000);
    std::size_t const chunks = RegionSource::instance().chunkCount();
    for (int round = 0; round < 20; ++round) {
        ur::NodeBatch batch;
        for (void* node : nodes) batch.add(node);
        if (round < 19) nodes = take(10000, 40);
    }
    EXPECT_LE(RegionSource::instance().chunkCount(), chunks + 2);
    nodes = take(40000, 40);
    std::set<void*> distinct(nodes.begin(), nodes.end());
    distinct.insert(kept.begin(), kept.end());
    EXPECT_EQ(distinct.size(), 50000U);
    giveBack(nodes, 40);
    giveBack(kept, 40);
}

TEST(BlockAllocator, HandsOutDistinctNodesInOrderAndReusesWhatCameBack) {
    ur::BlockAllocator nodes(24, 10);
    std::vector<void*> taken;
    for (int i = 0; i < 25; ++i) taken.push_back(nodes.allocate());
    EXPECT_EQ(std::set<void*>(taken.begin(), taken.end()).size(), 25U);
    EXPECT_TRUE(std::is_sorted(taken.begin(), taken.begin() + 10));
    nodes.deallocate(taken[3]);
    EXPECT_EQ(nodes.allocate(), taken[3]);
    EXPECT_EQ(nodes.size(), 25U);
    ur::BlockAllocator one(24, 0);
    EXPECT_NE(one.allocate(), one.allocate());
}

}  // namespace
