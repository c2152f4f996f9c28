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
        EXPECT_TRUE(access(b) && !access(a));
        manager.lockResource(a), manager.clearResource(b), manager.removeResource(gone);
    };
    keyOf(a).onInitialize = [&] { EXPECT_NE(access(a), nullptr); };
    EXPECT_NE(access(a), nullptr);
    EXPECT_TRUE(a->isResourceLocked() && a->isResourceAllocated() && !b->isResourceAllocated());
}

TEST_F(HooksTest, AKeyMayBringInOthersWhileItIsCompared) {
    for (int number = 1; number <= 4; ++number) {
        auto const key = make<Key>(number);
        bool brought = false;
        Reference<Shim> other;
        key->onComparing = [&] {
            if (!std::exchange(brought, true)) other = shim(make<Key>(10 + number));
        };
        Reference<Shim> const found = shim(key);
        EXPECT_TRUE(brought);
        EXPECT_EQ(keyOf(found).number, number);
        EXPECT_EQ(found == a || found == b || found == c, number < 4);
    }
}

TEST_F(HooksTest, WhatABuildThrowsLeavesTheCacheAsItWas) {
    for (Hook Key::*hook : {&Key::onBuild, &Key::onInitialize}) {
        keyOf(a).*hook = [] { throw std::runtime_error("no"); };
        manager.lockResource(a);
        EXPECT_THROW(access(a), std::runtime_error);
        EXPECT_TRUE(!a->isResourceAllocated() && manager.getMemoryUsed() == 0);
        manager.unlockResource(a);
        EXPECT_EQ(manager.audit(), "");
        keyOf(a).*hook = [] {};
    }
    EXPECT_NE(access(a), nullptr);
}

TEST_F(HooksTest, ResourcesMayComeBackWhileTheyAreCleared) {
    for (auto const& shim : {a, b, c}) {
        access(shim);
        keyOf(shim).onCleared = [&] { access(a), access(b), access(c); };
    }
    manager.clearResource(b);
    EXPECT_TRUE(b->isResourceAllocated());
    for (unsigned const limit : {1500, 1}) {  // evicting one rebuilds it: the limit must win in the end
        manager.setMemoryLimit(limit);
        EXPECT_LE(manager.getMemoryUsed(), limit);
    }
    EXPECT_LT(keyOf(a).builds + keyOf(b).builds + keyOf(c).builds, 40);
}

TEST_F(HooksTest, RoomIsMadeAtOnceForWhatHooksOfAnEvictionBuild) {
    auto const expected = make<Key>(4);
    expected->expected = 1000;
    auto const d = shim(expected), e = shim(make<Key>(5));
    for (auto const& shim : {a, b, c}) access(shim);
    keyOf(d).onBuild = [&] { EXPECT_EQ(manager.getMemoryUsed(), 1000); };
    keyOf(a).onCleared = [&] {
        EXPECT_TRUE(access(d) && access(e) && d->isResourceAllocated());
        EXPECT_EQ(manager.getMemoryUsed(), 2000);
    };
    manager.setMemoryLimit(2500);
    EXPECT_TRUE(e->isResourceAllocated() && manager.statistics().clearedForLimit == 3);
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
        EXPECT_TRUE(reached == deepest && cache.manager.numKeys() == 0);
    }
}

TEST_F(HooksTest, AskingForTheSizeMayThrowOrTakeTheResourceAway) {
    auto const add = [&](Reference<Shim> const& shim, Hook onSize) {
        keyOf(shim).make = [onSize] {
            auto const blob = make<Blob>(1000);
            blob->onSize = [onSize, isFirst = true]() mutable { isFirst ? void(isFirst = false) : onSize(); };
            return blob;
        };
        access(shim);
    };
    add(a, [] { throw std::runtime_error("no"); });
    EXPECT_THROW(manager.clearResource(a), std::runtime_error);
    EXPECT_TRUE(a->isResourceAllocated() && manager.audit() == "");
    EXPECT_THROW(manager.removeResource(a), std::runtime_error);
    EXPECT_TRUE(!a->manager() && manager.getMemoryUsed() == 0);
    add(b, [&] { manager.lockResource(b); });
    manager.clearResource(b);
    EXPECT_TRUE(b->isResourceAllocated());
    add(c, [&] { c->isResourceAllocated() && c->manager() ? manager.removeResource(c) : void(); });
    manager.clearResource(c);
    EXPECT_EQ(manager.numKeys(), 1);
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
