// Removing keys with what is built from them, and shims that remove themselves.
#include <pthread.h>

#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {
namespace {

using ur::make;
using ur::Reference;

struct RemovalTest : testing::Test {
    /// Writes down when the resource is cleared ("c") and when the key is removed ("r").
    void follow(Reference<Shim> const& shim) {
        Key& key = keyOf(shim);
        key.onCleared = [&] { log += " c" + std::to_string(key.number); };
        key.onRemoved = [&] { log += " r" + std::to_string(key.number); };
    }
    /// Makes shim `number`, builds its resource and follows it.
    Reference<Shim> add(int number, std::vector<Reference<Shim>> sources = {}, Shim::KeyType type = Shim::Retained) {
        auto const shim = cache->derived(number, std::move(sources), type);
        follow(shim);
        cache->access(shim);
        return shim;
    }

    std::string log;
    std::unique_ptr<Cache> cache = std::make_unique<Cache>();
};

TEST_F(RemovalTest, TakesAllThatIsBuiltFromTheSourceAndKeepsWhatItIsBuiltFrom) {
    auto const source = add(1), other = add(2);
    auto const left = add(3, {source, other}), right = add(4, {source});
    auto const top = add(5, {right, left, left});
    cache->manager.lockResource(source);
    cache->manager.removeResource(source);
    EXPECT_EQ(log, " c1 c3 c5 r5 r3 c4 r4 r1");
    EXPECT_EQ(cache->manager.numKeys(), 1);
    EXPECT_EQ(cache->manager.getMemoryUsed(), 1000);
    EXPECT_EQ(cache->manager.audit(), "");

    EXPECT_TRUE(!top->manager() && !top->keyData() && !cache->access(top));
    cache->manager.lockResource(top), cache->manager.unlockResource(source);
    cache->manager.clearResource(top), cache->manager.removeResource(top);
    EXPECT_FALSE(top->isResourceLocked());
}

TEST_F(RemovalTest, DestroyingTheManagerRemovesDependentsFirst) {
    auto const k1 = add(1), k2 = add(2, {k1}), k3 = add(3, {k2, k2}), k4 = add(4, {k1});
    keyOf(k3).onRemoved = [this, &manager = cache->manager] {
        log += " r3";
        auto const late = manager.getShim(make<Key>(9), Shim::Retained);
        EXPECT_EQ(late->manager(), nullptr);
        EXPECT_EQ(manager.accessResource(late), nullptr);
    };
    cache.reset();
    EXPECT_TRUE(log == " c3 r3 c2 r2 c4 r4 c1 r1" || log == " c4 r4 c3 r3 c2 r2 c1 r1") << log;
    EXPECT_EQ(k2->manager(), nullptr);
}

TEST_F(RemovalTest, KeysThatNameEachOtherOrThemselvesCanBeRemoved) {
    Manager& manager = cache->manager;
    auto const a = make<Key>(1), b = make<Key>(2), self = make<Key>(3);
    a->onVisit = [&](KeyVisitor& visitor) { visitor.visit(manager.getShim(b, Shim::Retained).get()); };
    b->onVisit = [&](KeyVisitor& visitor) { visitor.visit(manager.getShim(a, Shim::WeakCounted).get()); };
    self->onVisit = [&](KeyVisitor& visitor) {
        for (int i = 0; i < 3; ++i) visitor.visit(manager.findShim(self).get());
        visitor.visit(nullptr);
    };
    auto const shim = cache->shim(a);
    cache->shim(self);
    EXPECT_EQ(manager.numKeys(), 3);
    a->onBuild = [&] { cache->access(manager.findShim(b)); };
    b->onBuild = [&] { EXPECT_EQ(cache->access(shim), nullptr); };
    EXPECT_NE(cache->access(shim), nullptr);
    EXPECT_EQ(manager.audit(), "");
    manager.removeResource(manager.findShim(b));
    EXPECT_EQ(manager.numKeys(), 1);
    EXPECT_EQ(manager.audit(), "");
    a->onBuild = b->onBuild = nullptr;
    cache->shim(a);
    cache.reset();
    EXPECT_EQ(a->referenceCount(), 1);  // nothing keeps the circle alive
}

TEST_F(RemovalTest, WeakShimsGoWhenOnlyTheirDependentsCount) {
    Manager& manager = cache->manager;
    auto weak = add(1, {}, Shim::WeakCounted), retained = add(2);
    auto const key = make<Key>(3);
    key->onVisit = [sources = std::vector{weak.get(), retained.get()}](KeyVisitor& visitor) {
        for (Shim* const source : sources) visitor.visit(source);
    };
    auto top = cache->shim(key);
    follow(top);
    cache->access(top);
    weak->weakRef(), weak->weakUnref(1);
    for (int i = 0; i < 5; ++i) retained->weakRef();  // do not count for it
    retained.reset(), top.reset();
    EXPECT_EQ(manager.numKeys(), 3);
    weak.reset();  // left: the manager's own reference, as many as dependents
    EXPECT_EQ(log, " c1 c3 r3 r1");
    EXPECT_EQ(manager.numKeys(), 1);

    add(4, {}, Shim::WeakCounted);
    EXPECT_EQ(manager.numKeys(), 2);  // without dependents the manager's reference is one more than none
    EXPECT_EQ(manager.audit(), "");
}

TEST_F(RemovalTest, HooksMayRemoveDropAndMakeKeysMeanwhile) {
    Manager& manager = cache->manager;
    auto source = add(1), bystander = add(8);
    auto const top = add(2, {source});
    keyOf(top).onCleared = [&] {
        manager.removeResource(top);
        manager.removeResource(source);
        manager.removeResource(bystander);
        EXPECT_EQ(bystander->manager(), nullptr);
        EXPECT_EQ(cache->access(source), nullptr);
    };
    Reference<Shim> late;
    keyOf(top).onRemoved = [&] {
        log += " r2";
        late = cache->derived(2, {source});  // from something that is about to go
        throw std::runtime_error("first");
    };
    keyOf(source).onRemoved = [&] {
        log += " r1";
        throw std::runtime_error("second");
    };
    log.clear();
    EXPECT_THROW(
        try { manager.removeResource(source); } catch (std::runtime_error const& error) {
            EXPECT_STREQ(error.what(), "first");
            throw;
        },
        std::runtime_error);
    EXPECT_EQ(log, " c1 c8 r8 r2 r1");
    EXPECT_EQ(late->manager(), nullptr);
    EXPECT_EQ(manager.numKeys(), 0);
    EXPECT_EQ(manager.audit(), "");
}

/// Runs `work` on a thread whose stack has 256 KiB.
template <class Work>
void onSmallStack(Work work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 256 * 1024), 0);
    pthread_t thread;
    auto const run = [](void* what) -> void* { return (*static_cast<Work*>(what))(), nullptr; };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST_F(RemovalTest, AChainOfAHundredThousandNeedsNoStack) {
    constexpr int length = 100'000;
    /// Resources hold the ones that they are built from.
    struct Stage : Blob {
        explicit Stage(Reference<Resource> from) : Blob(10), source(std::move(from)) {}
        Reference<Resource> source;
    };
    auto const build = [&](Shim::KeyType type) {
        Reference<Shim> last, first;
        for (int number = 0; number < length; ++number) {
            auto const key = make<Key>(number);
            key->hash = static_cast<unsigned>(number);
            if (last) key->sources = {last};
            key->make = [this, last] { return Reference<Resource>(new Stage(last ? cache->access(last) : nullptr)); };
            last = cache->shim(key, type);
            cache->access(last);
            if (!first) first = last;
        }
        return first;
    };
    onSmallStack([&] {
        cache->manager.removeResource(build(Shim::Retained));
        EXPECT_EQ(cache->manager.numKeys(), 0);
        build(Shim::WeakCounted);
        EXPECT_EQ(cache->manager.numKeys(), length);
        EXPECT_EQ(cache->manager.audit(), "");
        cache.reset();
    });
}

TEST_F(RemovalTest, ManyDependentsGoInAnyOrderWithoutGettingSlow) {
    constexpr int count = 100'000;
    auto const source = add(count);
    std::vector<Reference<Shim>> dependents;
    for (int number = 0; number < count; ++number) {
        auto const key = make<Key>(number);
        key->hash = static_cast<unsigned>(number);
        key->sources = {source};
        dependents.push_back(cache->shim(key));
    }
    for (int i = 0; i < count - 3; ++i) cache->manager.removeResource(dependents[static_cast<unsigned>(i * 7 % count)]);
    EXPECT_EQ(cache->manager.audit(), "");
    cache->manager.removeResource(source);
    EXPECT_EQ(cache->manager.numKeys(), 0);
}

}  // namespace
}  // namespace urKRCache::test
