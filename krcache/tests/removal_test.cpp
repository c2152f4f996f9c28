// Removing keys with everything built from them.
#include <memory>

#include "foundation/ur/tests/smallStack.h"
#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {
namespace {

using ur::make;
using ur::Reference;

/// Logs its destruction.
struct Mortal : Blob {
    explicit Mortal(Hook hook) : Blob(1000), onDestroy(std::move(hook)) {}
    ~Mortal() override { onDestroy(); }
    Hook onDestroy;
};

struct RemovalTest : testing::Test {
    /// A shim whose resource is built. Logs when the resource is destroyed (d), cleared (c) and the key is removed (r).
    Reference<Shim> add(int number, std::vector<Reference<Shim>> sources = {}) {
        auto const key = make<Key>(number);
        key->sources = std::move(sources);
        auto const note = [this, number](char what) {
            return [=, this] { log += std::string(" ") + what + std::to_string(number); };
        };
        key->make = [note] { return Reference<Resource>(new Mortal(note('d'))); };
        key->onCleared = note('c');
        key->onRemoved = note('r');
        auto shim = manager->getShim(key, Shim::Retained);
        cache->access(shim);
        return shim;
    }

    /// A shim that is removed, with its only dependent, when the client releases it.
    Reference<Shim> addLoose(int number, std::vector<Reference<Shim>> held = {}) {
        auto const key = make<Key>(number), dependent = make<Key>(-number);
        key->onRemoved = [this, number] { log += " r" + std::to_string(number); };
        key->make = [held] { return make<Blob>(10); };
        if (number > 9) key->hash = dependent->hash = static_cast<unsigned>(number);
        auto shim = manager->getShim(key, Shim::WeakCounted);
        dependent->onVisit = [&](KeyVisitor& visitor) { visitor.visit(shim.get()); };
        cache->shim(dependent), dependent->onVisit = [](KeyVisitor& /*visitor*/) {};
        return shim;
    }

    std::string log;
    std::unique_ptr<Cache> cache = std::make_unique<Cache>();
    Manager* manager = &cache->manager;
};

TEST_F(RemovalTest, TakesAllThatIsBuiltFromTheSourceAndKeepsWhatItIsBuiltFrom) {
    auto const source = add(1), other = add(2);
    auto const left = add(3, {source, other}), right = add(4, {source}), top = add(5, {right, left, left});
    manager->lockResource(source), manager->removeResource(source);
    EXPECT_EQ(log, " d1 c1 d3 c3 d5 c5 r5 r3 d4 c4 r4 r1");
    EXPECT_EQ(manager->getMemoryUsed(), 1000);
    EXPECT_EQ(manager->audit(), "");
    manager->lockResource(top), manager->unlockResource(source), manager->clearResource(top);
    manager->removeResource(top);
    EXPECT_EQ(states({source, other, left, right, top}), "x!mxxx");
    EXPECT_EQ(top->keyData(), nullptr);
    EXPECT_EQ(cache->access(top), nullptr);
}

TEST_F(RemovalTest, WhatAHookGivesUpIsGoneWhenTheHookGoesOnAndIsNeverFoundAgain) {
    for (unsigned const deepest : {16U, 1U}) {
        cache = std::make_unique<Cache>(Tuning{.nestedHooks = deepest}), manager = &cache->manager, log.clear();
        auto const outer = add(1);
        auto loose = addLoose(2);
        auto const key = loose->keyData();
        Shim const* const former = loose.get();
        Reference<Shim> again;
        keyOf(outer).onRemoved = [&] {
            loose.reset();
            EXPECT_EQ(log, deepest == 1 ? " d1" : " d1 r2");
            EXPECT_EQ(manager->findShim(make<Key>(2)), nullptr);
            again = manager->getShim(key, Shim::Retained);
            EXPECT_NE(again, former);
            EXPECT_NE(cache->access(again), nullptr);
        };
        keyOf(outer).onCleared = [&] { EXPECT_NE(cache->shim(make<Key>(1)), outer); };
        manager->removeResource(outer);
        EXPECT_EQ(states({again}), "m");
        EXPECT_EQ(manager->findShim(key), again);
        EXPECT_EQ(manager->numKeys(), 2);
        EXPECT_EQ(manager->audit(), "");
    }
}

TEST_F(RemovalTest, WhatOneKeyHoldsGoesInOrderEachWithWhatItHoldsItself) {
    for (unsigned const deepest : {16U, 2U, 1U}) {
        cache = std::make_unique<Cache>(Tuning{.nestedHooks = deepest}), manager = &cache->manager, log.clear();
        auto outer = addLoose(1, {addLoose(2, {addLoose(3), addLoose(4)}), addLoose(5), addLoose(6, {addLoose(7)})});
        outer.reset();
        EXPECT_EQ(log, " r1 r2 r3 r4 r5 r6 r7") << deepest;
        EXPECT_EQ(manager->numKeys(), 0);
    }
}

TEST_F(RemovalTest, DestroyingTheManagerRemovesDependentsFirst) {
    auto const k1 = add(1), k2 = add(2, {k1}), k3 = add(3, {k2, k2});
    keyOf(k3).onRemoved = [this] {
        auto const late = manager->getShim(make<Key>(9), Shim::Retained);
        EXPECT_EQ(manager->accessResource(late), nullptr);
        EXPECT_EQ(states({late}), "x");
    };
    cache.reset();
    EXPECT_EQ(log, " d3 c3 d2 c2 r2 d1 c1 r1");
    EXPECT_EQ(k2->manager(), nullptr);
}

TEST_F(RemovalTest, KeysThatNameEachOtherOrThemselvesCanBeRemoved) {
    auto const a = make<Key>(1), b = make<Key>(2), self = make<Key>(3);
    a->onVisit = [&](KeyVisitor& visitor) { visitor.visit(cache->shim(b).get()); };
    b->onVisit = [&](KeyVisitor& visitor) { visitor.visit(cache->shim(a).get()); };
    self->onVisit = [&](KeyVisitor& visitor) {
        for (int i = 0; i < 3; ++i) visitor.visit(manager->findShim(self).get());
    };
    a->onBuild = [&] { cache->access(manager->findShim(b)); };
    b->onBuild = [&] { EXPECT_EQ(cache->access(manager->findShim(a)), nullptr); };
    cache->shim(self);
    EXPECT_NE(cache->access(cache->shim(a)), nullptr);
    EXPECT_EQ(manager->audit(), "");
    manager->removeResource(manager->findShim(b));
    EXPECT_EQ(manager->numKeys(), 1);
    a->onBuild = b->onBuild = [] {};
    cache->shim(a);
    cache.reset();
    EXPECT_EQ(a->referenceCount(), 1);  // nothing keeps the circle alive
}

TEST_F(RemovalTest, AChainOfAHundredThousandNeedsNoStack) {
    /// The resource holds the resources that it is built from.
    struct Stage : Blob {
        explicit Stage(Reference<Resource> from) : Blob(10), source(std::move(from)) {}
        Reference<Resource> source;
    };
    auto const build = [this](Shim::KeyType type) {
        Reference<Shim> last, first;
        for (int number = 0; number < 100'000; ++number) {
            auto const key = make<Key>(number);
            key->hash = static_cast<unsigned>(number);
            if (last) key->sources = {last};
            key->make = [this, last] { return Reference<Resource>(new Stage(last ? cache->access(last) : nullptr)); };
            last = manager->getShim(key, type);
            cache->access(last);
            if (!first) first = last;
        }
        return first;
    };
    auto const work = [&] {
        manager->removeResource(build(Shim::Retained));
        EXPECT_EQ(manager->numKeys(), 0);
        build(Shim::WeakCounted);
        EXPECT_EQ(manager->audit(), "");
        int const others = manager->numKeys();
        Reference<Shim> last;
        for (int number = 200'000; number < 230'000; ++number) last = addLoose(number, {std::move(last)});
        last.reset();  // each key's destructor releases the next shim
        EXPECT_EQ(manager->numKeys(), others);
        cache.reset();
    };
    ::test::onSmallStack(work, 256 * 1024);
}

}  // namespace
}  // namespace urKRCache::test
