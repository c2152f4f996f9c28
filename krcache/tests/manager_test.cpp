// Tests what the model leaves out: equality of keys, wide counters, resident sizes, and finding the manager.
#include <gmock/gmock.h>

#include <stdexcept>

#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {

struct OtherKey : Key {
    using Key::Key;
    int onCompare(KeyData const* /*other*/) const override { throw std::logic_error("not of this class"); }
};

namespace {

using ur::make;
using ur::Reference;

struct ManagerTest : testing::Test, Cache {
    void TearDown() override { EXPECT_EQ(manager.audit(), ""); }

    Messages messages;
};

TEST_F(ManagerTest, EqualKeysShareOneShimAndItsKeyIsTheFirstOfThem) {
    auto const first = make<Key>(1);
    auto const shim = manager.getShim(first, Shim::Retained);
    EXPECT_EQ(manager.getShim(make<Key>(1), Shim::WeakCounted), shim);
    EXPECT_TRUE(shim->keyType() == Shim::Retained && shim->keyData() == first && first->hashes == 1);
    EXPECT_EQ(manager.findShim(make<Key>(*first)), shim);
    auto const changedCopy = make<Key>(*first);
    changedCopy->number = 2, changedCopy->hash = 8;
    EXPECT_EQ(manager.findShim(changedCopy), nullptr);

    auto const other = make<OtherKey>(1);
    EXPECT_EQ(manager.findShim(other), nullptr);
    int const order = typeid(Key).before(typeid(OtherKey)) ? -1 : 1;
    EXPECT_TRUE(first->compare(other.get()) == order && other->compare(first.get()) == -order);
    EXPECT_EQ(manager.numKeys(), 1);
}

TEST_F(ManagerTest, AKeyIsInTheTableOnceOrNotAtAllWhateverItsHashDoes) {
    struct Forgetful : Key {
        using Key::Key;
        unsigned onHash() const override { return onHashing(++hashes), 0; }
        std::function<void(int)> onHashing = [](int /*time*/) {};
    };
    auto const thrower = make<Forgetful>(1), doubled = make<Forgetful>(1);
    thrower->onHashing = [](int time) { time == 2 ? throw std::runtime_error("no") : void(); };
    thrower->onRemoved = [] { ADD_FAILURE() << "was never there"; };
    EXPECT_THROW(manager.getShim(thrower, Shim::Retained), std::runtime_error);
    Reference<Shim> first;
    doubled->onHashing = [&](int time) { first = time == 2 ? shim(make<Forgetful>(1)) : first; };
    EXPECT_EQ(shim(doubled), first);
}

TEST_F(ManagerTest, ProxiesAndWhatIsNotBuiltCountNothing) {
    struct Proxy : Resource {
        Proxy() : Resource(true) {}
        unsigned onGetSizeInBytes() const override { throw std::logic_error("asked"); }
    };
    auto const a = shim(make<Key>(1, Key::none));
    EXPECT_EQ(access(a), nullptr);
    keyOf(a).size = 10;
    keyOf(a).make = [] { return Reference<Resource>(new Proxy); };
    EXPECT_TRUE(access(a)->isProxy());
    EXPECT_EQ(manager.getMemoryUsed(), 0);
}

TEST_F(ManagerTest, SizesThatWereNotExpectedAreSaid) {
    unsigned const large = 524289;
    int number = 0;
    for (auto [expected, size, isSaid] :
         {std::tuple(0U, large, true), std::tuple(0U, large - 1, false), std::tuple(large - 1023, large, false),
          std::tuple(large - 1024, large, true), std::tuple(large + 1024, large, true)}) {
        auto const key = make<Key>(++number, size);
        key->expected = expected;
        access(shim(key));
        EXPECT_EQ(messages.take(), isSaid ? "Unanticipated 0.50MB resource!\n" : "") << number;
    }
}

TEST_F(ManagerTest, CountersGoBeyondFourGigabytesAndNarrowOnesStopThere) {
    std::uint64_t const large = 3'000'000'000;
    manager.setMemoryLimit64(2 * large);
    for (int const number : {1, 2}) access(shim(make<Key>(number, static_cast<unsigned>(large))));
    EXPECT_EQ(manager.getMemoryUsed64(), 2 * large);
    EXPECT_TRUE(manager.getMemoryUsed() == ~0U && manager.getMemoryLimit() == ~0U);
    manager.setMemoryLimit64(2 * large - 1);
    EXPECT_EQ(manager.getMemoryUsed64(), large);
}

TEST_F(ManagerTest, ResidentSizeModeBoundsTheWholeProcess) {
    auto const a = shim(make<Key>(1));
    access(a);
    manager.setUseResidentSize();
    EXPECT_GT(manager.getResidentSize(), megabyte);
    manager.setMemoryLimit(megabyte);  // less than the process uses without the cache
    EXPECT_FALSE(a->isResourceAllocated());
    messages.take();
    manager.allocatingExternalResource(10), manager.deletedExternalResource(10);
    EXPECT_EQ(manager.getMemoryLimit(), megabyte);
    EXPECT_THAT(messages.take(), testing::StartsWith("Locked resources exceed memory limit by ("));
    manager.setMemoryLimit(~0U);
    EXPECT_NE(access(a), nullptr);
}

std::uint64_t resident;
int samples;

TEST(ResidentSize, IsSampledNowAndThenAndLessThanResourcesClaim) {
    Cache cache({.sampleInterval = 100, .residentSize = [] { return ++samples, resident; }});
    struct Elsewhere : Key {
        using Key::Key;
        bool isResidential() const override { return false; }
    };
    auto const elsewhere = cache.shim(Reference<Key>(new Elsewhere(1, 3000))),
               claims = cache.shim(make<Key>(2, 10'000));
    resident = 1000;
    cache.manager.setUseResidentSize();
    cache.manager.setMemoryLimit(5000);
    for (int request = 1; request < 10; ++request) cache.manager.enforceMemoryLimit(0);
    EXPECT_EQ(samples, 1);
    cache.access(elsewhere), cache.access(claims);
    EXPECT_TRUE(elsewhere->isResourceAllocated() && claims->isResourceAllocated());
    EXPECT_EQ(samples, 3);
    resident = 2500;
    for (int request = 1; request < 11; ++request) cache.manager.enforceMemoryLimit(0);
    EXPECT_TRUE(elsewhere->isResourceAllocated() && samples == 3);
    cache.manager.enforceMemoryLimit(0);
    EXPECT_TRUE(!elsewhere->isResourceAllocated() && claims->isResourceAllocated() && samples == 4);
    cache.manager.clear();
    resident = 1500, cache.access(elsewhere), cache.access(claims);  // reserving the claim takes no room from others
    EXPECT_TRUE(elsewhere->isResourceAllocated() && claims->isResourceAllocated());
}

TEST(CacheManagerFunction, MissingIsALogicError) {
    Cache cache;
    static Manager* known = &cache.manager;
    EXPECT_THROW(static_cast<void>(getKeyResourceManager()), std::logic_error);
    setCacheManagerFunc([] { return known; });
    EXPECT_EQ(&getKeyResourceManager(), known);
    setCacheManagerFunc(nullptr);
    EXPECT_THROW(static_cast<void>(getKeyResourceManager()), std::logic_error);
}

}  // namespace
}  // namespace urKRCache::test
