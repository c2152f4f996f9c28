// Keys and resources that use the cache, or throw, while the cache calls them.
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
        manager.lockResource(a);
        manager.clearResource(b);
        manager.removeResource(gone);
        access(c);
    };
    keyOf(a).onInitialize = [&] { EXPECT_NE(access(a), nullptr); };
    EXPECT_NE(access(a), nullptr);
    EXPECT_EQ(keyOf(a).builds, 1);
    EXPECT_TRUE(a->isResourceLocked() && a->isResourceAllocated() && !b->isResourceAllocated());
}

TEST_F(HooksTest, AKeyMayBeRemovedByItsOwnHooks) {
    for (Hook<> Key::*hook : {&Key::onBuild, &Key::onInitialize, &Key::onCleared}) {
        auto const shim = Cache::shim(make<Key>(9));
        keyOf(shim).*hook = [&] { manager.removeResource(shim); };
        EXPECT_EQ(access(shim) == nullptr, hook != &Key::onCleared);
        manager.clearResource(shim);
        EXPECT_EQ(shim->manager(), nullptr);
        EXPECT_EQ(manager.getMemoryUsed(), 0);
        EXPECT_EQ(manager.audit(), "");
    }
}

TEST_F(HooksTest, WhatABuildThrowsLeavesTheCacheAsItWas) {
    auto const failing = [] { throw std::runtime_error("no"); };
    keyOf(a).expected = 500;
    for (Hook<> Key::*hook : {&Key::onBuild, &Key::onInitialize}) {
        keyOf(a).*hook = failing;
        manager.lockResource(a);
        EXPECT_THROW(access(a), std::runtime_error);
        EXPECT_FALSE(a->isResourceAllocated());
        EXPECT_EQ(manager.getMemoryUsed(), 0);
        manager.unlockResource(a);
        EXPECT_EQ(manager.audit(), "");
        keyOf(a).*hook = nullptr;
    }
    EXPECT_NE(access(a), nullptr);

    auto const unborn = make<Key>(5);
    unborn->onVisit = [&](KeyVisitor& visitor) {
        visitor.visit(a.get());
        failing();
    };
    EXPECT_THROW(shim(unborn), std::runtime_error);
    EXPECT_EQ(manager.findShim(unborn), nullptr);
}

TEST_F(HooksTest, WhatAnEvictionThrowsStopsItAtAConsistentPoint) {
    access(a), access(b);
    keyOf(a).onCleared = [] { throw std::runtime_error("no"); };
    EXPECT_THROW(manager.setMemoryLimit(500), std::runtime_error);
    EXPECT_TRUE(!a->isResourceAllocated() && b->isResourceAllocated());
    manager.enforceMemoryLimit(0);
    EXPECT_FALSE(b->isResourceAllocated());
}

TEST_F(HooksTest, ResourcesMayComeBackWhileTheyAreCleared) {
    for (auto const& shim : {a, b, c}) {
        access(shim);
        keyOf(shim).onCleared = [&] { access(a), access(b), access(c); };
    }
    manager.clearResource(b);
    EXPECT_TRUE(b->isResourceAllocated());
    manager.setMemoryLimit(1500);  // evicting one brings it back: the limit wins in the end
    EXPECT_LE(manager.getMemoryUsed(), 1500);
    manager.setMemoryLimit(1);
    EXPECT_EQ(manager.getMemoryUsed(), 0);
    EXPECT_EQ(access(a), nullptr);
    EXPECT_LT(keyOf(a).builds + keyOf(b).builds + keyOf(c).builds, 40);
}

TEST_F(HooksTest, PagingMayUseTheCacheAndPageOthers) {
    auto const big = std::string(200'000, 'b');
    for (auto const& shim : {a, b, c}) {
        keyOf(shim).make = [=, this] {
            auto const blob = make<Blob>(200'000, big);
            blob->onPage = [=, this] {
                EXPECT_EQ(access(shim), nullptr);
                manager.clearResource(c);
                access(b);
            };
            return Reference<Resource>(blob);
        };
        manager.setSerializable(shim);
        access(shim);
    }
    manager.clear();
    for (auto const& shim : {a, b, c}) EXPECT_EQ(static_cast<Blob&>(*access(shim)).payload, big);
    EXPECT_EQ(keyOf(a).builds + keyOf(b).builds + keyOf(c).builds, 3);
}

TEST_F(HooksTest, AShimMayBeRemovedWhileItIsPaged) {
    for (bool const whileReading : {false, true}) {
        auto const key = make<Key>(9);
        auto const shim = Cache::shim(key);
        key->make = [&] {
            auto const blob = make<Blob>(100);
            blob->onPage = [&, calls = 0]() mutable {
                if (calls++ == (whileReading ? 1 : 0)) manager.removeResource(shim);
            };
            return Reference<Resource>(blob);
        };
        manager.setSerializable(shim);
        access(shim);
        manager.clearResource(shim);
        EXPECT_EQ(access(shim), nullptr);
        EXPECT_EQ(shim->manager(), nullptr);
        EXPECT_EQ(manager.audit(), "");
    }
}

TEST_F(HooksTest, AKeyMayUseItsShimBeforeItIsLinkedAndThenFail) {
    auto const gone = shim(make<Key>(4));
    manager.removeResource(gone);
    for (bool const throws : {false, true}) {
        auto const key = make<Key>(9), above = make<Key>(10);
        Reference<Shim> seen;
        key->onVisit = [&](KeyVisitor& visitor) {
            seen = manager.findShim(key);
            above->sources = {seen};
            shim(above);
            access(seen);
            if (throws) throw std::runtime_error("no");
            visitor.visit(gone.get());
        };
        if (throws) {
            EXPECT_THROW(shim(key), std::runtime_error);
        } else {
            EXPECT_EQ(shim(key)->manager(), nullptr);
        }
        EXPECT_EQ(seen->manager(), nullptr);
        EXPECT_EQ(manager.findShim(above), nullptr);
        EXPECT_EQ(manager.audit(), "");
    }
}

TEST_F(HooksTest, ComparingMayChangeTheTable) {
    int number = 100, changes = 0;
    auto const probe = make<Key>(2);  // all keys here have one hash: the first comparison is with a
    probe->onComparing = [&] {
        if (changes++ > 0) return;
        for (int i = 0; i < 40; ++i) manager.getShim(make<Key>(++number), Shim::Retained);
        manager.removeResource(a);
    };
    EXPECT_EQ(manager.findShim(probe), b);
    probe->onComparing = [&] { manager.removeResource(b); };
    EXPECT_EQ(manager.findShim(probe), nullptr);
}

TEST_F(HooksTest, AskingAKeyForItsSizesMayBringItIn) {
    struct Eager : Key {
        using Key::Key;
        bool hasPredeterminedSize() const override {
            Reference<KeyData> const self(const_cast<Eager*>(this));
            if (depth++ == 0) manager->getShim(self, Shim::Retained);
            return false;
        }
        Manager* manager = nullptr;
        mutable int depth = 0;
    };
    auto const key = make<Eager>(50);
    key->manager = &manager;
    auto const shim = manager.getShim(key, Shim::Retained);
    EXPECT_EQ(manager.findShim(key), shim);
    EXPECT_EQ(manager.numKeys(), 4);
}

}  // namespace
}  // namespace urKRCache::test
