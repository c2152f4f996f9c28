// Keys and resources that use the cache, or throw, from their hooks.
#include <random>
#include <stdexcept>

#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {
namespace {

using ur::make;
using ur::Reference;

struct HooksTest : testing::Test, Cache {
    void TearDown() override { EXPECT_EQ(manager.audit(), ""); }

    Reference<Shim> a = shim(make<Key>(1)), b = shim(make<Key>(2)), c = shim(make<Key>(3));
};

TEST_F(HooksTest, ABuildMayAccessLockClearAndRemoveOthersButItselfIsAbsent) {
    auto const gone = shim(make<Key>(4));
    keyOf(a).onBuild = [&] {
        EXPECT_NE(access(b), nullptr);
        EXPECT_EQ(access(a), nullptr);
        manager.lockResource(a), manager.clearResource(b), manager.removeResource(gone);
    };
    keyOf(a).onInitialize = [&] { EXPECT_NE(access(a), nullptr); };
    EXPECT_NE(access(a), nullptr);
    EXPECT_EQ(states({a, b, gone}), "m!-x");
}

TEST_F(HooksTest, WhatABuildThrowsLeavesTheCacheAsItWas) {
    for (Hook Key::*hook : {&Key::onBuild, &Key::onInitialize}) {
        keyOf(a).*hook = [] { throw std::runtime_error("no"); };
        manager.lockResource(a);
        EXPECT_THROW(access(a), std::runtime_error);
        EXPECT_EQ(states({a}), "-!");
        EXPECT_EQ(manager.audit(), "");
        manager.unlockResource(a);
        keyOf(a).*hook = [] {};
    }
    EXPECT_NE(access(a), nullptr);
}

TEST(NestedHooks, OfEvictionsAndRemovalsGoSoDeepAndNoDeeper) {
    for (unsigned const deepest : {1U, 3U}) {
        Cache cache({.nestedHooks = deepest});
        std::vector<Reference<Shim>> shims;
        unsigned depth = 0, reached = 0;
        for (int number = 0; number < 40; ++number) {
            auto const key = make<Key>(number);
            key->expected = 1000;
            key->onCleared = [&, number] {
                reached = std::max(++depth, reached);
                for (int const other : {number, 39 - number}) cache.access(shims[static_cast<std::size_t>(other)]);
                cache.manager.enforceMemoryLimit(0);
                --depth;
            };
            key->onRemoved = [&, number] {
                reached = std::max(++depth, reached);
                cache.manager.removeResource(shims[(number + 1) % 40]);
                --depth;
            };
            shims.push_back(cache.shim(key));
            cache.access(shims.back());
        }
        cache.manager.setMemoryLimit(1500);
        EXPECT_EQ(reached, deepest);
        EXPECT_LE(cache.manager.getMemoryUsed(), 1500);
        EXPECT_EQ(cache.manager.audit(), "");
        reached = 0;
        cache.manager.removeResource(shims[0]);
        EXPECT_EQ(reached, deepest);
        EXPECT_EQ(cache.manager.numKeys(), 0);
    }
}

TEST_F(HooksTest, AskingForTheSizeMayThrowOrTakeTheResourceAway) {
    auto const add = [&](Reference<Shim> const& shim, Hook const& onSize) {
        access(shim);
        static_cast<Blob&>(*access(shim)).onSize = onSize;
    };
    add(a, [] { throw std::runtime_error("no"); });
    EXPECT_THROW(manager.clearResource(a), std::runtime_error);
    EXPECT_EQ(states({a}) + std::string(manager.audit()), "m");
    EXPECT_THROW(manager.removeResource(a), std::runtime_error);
    add(b, [&] { manager.lockResource(b); });
    manager.clearResource(b);
    add(c, [&] { states({c}) == "m" ? manager.removeResource(c) : void(); });
    manager.clearResource(c);
    EXPECT_EQ(states({a, b, c}), "xm!x");
    EXPECT_EQ(manager.getMemoryUsed(), 1000);
}

/// Every hook of every key and resource makes a random call of the cache, and so do the hooks called from there.
struct RandomHooks {
    explicit RandomHooks(unsigned seed) : random(seed) {}

    unsigned draw(unsigned below) { return static_cast<unsigned>(random() % below); }
    Reference<Shim>& any() { return shims[draw(12)]; }
    void meddle() {
        if (depth == 4 || draw(3) == 0) return;
        ++depth;
        try {
            callManager();
        } catch (int) {
            --depth;
            throw;
        }
        --depth;
    }
    void callManager() {
        Reference<Shim> const one = any();
        unsigned const what = draw(24);
        if (what == 0) manager->setMemoryLimit(draw(8000));
        if (what == 1) manager->clear();
        if (what == 2 && depth > 1 && draw(4) == 0) throw 1;
        if (what == 3) any().reset();
        if (what < 8 || !one) return add();
        if (what == 8) manager->removeResource(one);
        if (what == 9) manager->setSerializable(one);
        if (what == 10) manager->lockResource(one);
        if (what == 11 || what == 12) manager->unlockResource(one);
        if (what > 12 && what < 16) manager->clearResource(one);
        if (what >= 16) cache.access(one);
    }
    void add() {
        auto const key = make<Key>(static_cast<int>(draw(numbers)));
        Hook const hook = [this] { meddle(); };
        key->onBuild = key->onInitialize = key->onCleared = key->onRemoved = key->onComparing = hook;
        key->make = [this, hook] {
            auto const blob = make<Blob>(draw(2000));
            blob->onPage = blob->onSize = hook;
            return blob;
        };
        for (unsigned left = draw(3); left > 0; --left) key->sources.push_back(any());
        key->onVisit = [hook](KeyVisitor&) { hook(); };
        auto made = manager->getShim(key, draw(3) == 0 ? Shim::WeakCounted : Shim::Retained);
        any() = std::move(made);
    }

    static constexpr int numbers = 16;  ///< the number of different keys
    std::mt19937 random;
    std::vector<Reference<Shim>> shims{12};
    int depth = 0;
    Cache cache;  // destroyed first: its hooks use the other members
    Manager* manager = &cache.manager;
};

TEST(MeddlingHooks, NeverLeaveTheCacheBroken) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        RandomHooks hooks(seed);
        for (int step = 0; step < 500; ++step) {
            try {
                hooks.meddle();
            } catch (int) {
            }
            ASSERT_EQ(hooks.manager->audit(), "") << "seed " << seed << ", step " << step;
            ASSERT_LE(hooks.manager->numKeys(), RandomHooks::numbers) << "seed " << seed << ", step " << step;
        }
    }
}

}  // namespace
}  // namespace urKRCache::test
