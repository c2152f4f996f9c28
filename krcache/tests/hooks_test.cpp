// Keys and resources that use the cache, or throw, while the cache calls them.
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
    for (unsigned const limit : {1500, 1}) {  // evicting one brings it back: the limit wins in the end
        manager.setMemoryLimit(limit);
        EXPECT_LE(manager.getMemoryUsed(), limit);
    }
    EXPECT_LT(keyOf(a).builds + keyOf(b).builds + keyOf(c).builds, 40);
}

/// Every hook of every key and resource does something drawn at random with the cache, and hooks of that do too.
struct Meddlers {
    explicit Meddlers(unsigned seed) : random(seed) {}

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
            blob->onPage = hook;
            return blob;
        };
        for (unsigned left = draw(3); left > 0; --left) key->sources.push_back(any());
        key->onVisit = [hook](KeyVisitor&) { hook(); };
        auto made = manager->getShim(key, draw(3) == 0 ? Shim::WeakCounted : Shim::Retained);
        any() = std::move(made);
    }

    static constexpr int numbers = 16;  ///< of different keys
    std::mt19937 random;
    std::vector<Reference<Shim>> shims{12};
    int depth = 0;
    Cache cache;  // goes first: the hooks use the rest
    Manager* manager = &cache.manager;
};

TEST(MeddlingHooks, NeverLeaveTheCacheBroken) {
    for (unsigned seed = 0; seed < 100; ++seed) {
        Meddlers meddlers(seed);
        for (int step = 0; step < 500; ++step) {
            try {
                meddlers.meddle();
            } catch (int) {
            }
            ASSERT_EQ(meddlers.manager->audit(), "") << "seed " << seed << ", step " << step;
            ASSERT_LE(meddlers.manager->numKeys(), Meddlers::numbers) << "seed " << seed << ", step " << step;
        }
    }
}

}  // namespace
}  // namespace urKRCache::test
