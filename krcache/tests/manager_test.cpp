// Building, evicting, locking, limits, interactions, and what is said about them.
#include <gmock/gmock.h>

#include <stdexcept>

#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {
namespace {

using testing::HasSubstr;
using ur::make;
using ur::Reference;

constexpr unsigned megabyte = 1048576;

struct ManagerTest : testing::Test, Cache {
    void TearDown() override { EXPECT_EQ(manager.audit(), ""); }

    Messages messages;
};

struct OtherKey : Key {
    using Key::Key;
};

TEST_F(ManagerTest, EqualKeysShareOneShimAndItsKeyIsTheFirstOfThem) {
    auto const first = make<Key>(1);
    auto const shim = manager.getShim(first, Shim::Retained);
    EXPECT_EQ(manager.getShim(make<Key>(1), Shim::WeakCounted), shim);
    EXPECT_EQ(shim->keyType(), Shim::Retained);
    EXPECT_EQ(shim->keyData(), first);
    EXPECT_EQ(manager.findShim(make<Key>(2)), nullptr);

    auto const other = make<OtherKey>(1);
    EXPECT_EQ(manager.findShim(other), nullptr);
    int const order = first->compare(other.get());
    EXPECT_EQ(order, typeid(Key).before(typeid(OtherKey)) ? -1 : 1);
    EXPECT_EQ(other->compare(first.get()), -order);
    EXPECT_EQ(other->compares, 0);
    EXPECT_EQ(first->hashes, 1);
    auto const copy = make<Key>(*first);
    EXPECT_EQ(manager.findShim(copy), shim);
    auto const changed = make<Key>(*first);
    changed->number = 2, changed->hash = 8;
    EXPECT_EQ(manager.findShim(changed), nullptr);
    EXPECT_EQ(manager.numKeys(), 1);
}

TEST_F(ManagerTest, AProxyCountsNothingAndIsNotAsked) {
    struct Proxy : Resource {
        Proxy() : Resource(true) {}
        unsigned onGetSizeInBytes() const override { throw std::logic_error("asked"); }
    };
    auto const key = make<Key>(1);
    key->make = [] { return Reference<Resource>(new Proxy); };
    EXPECT_TRUE(access(shim(key))->isProxy());
    EXPECT_EQ(manager.getMemoryUsed(), 0);
}

TEST_F(ManagerTest, TheLeastRecentlyUsedGoesFirstAndIsRebuiltOnDemand) {
    manager.setMemoryLimit(2500);
    auto const a = shim(make<Key>(1)), b = shim(make<Key>(2)), c = shim(make<Key>(3));
    int cleared = 0;
    urRTB::ScopedConnection const connection = keyOf(b).resourceClearedSignal.addCallback([&] { ++cleared; });
    access(a), access(b), access(a), access(c);
    EXPECT_TRUE(a->isResourceAllocated() && !b->isResourceAllocated() && c->isResourceAllocated());
    EXPECT_EQ(cleared, 1);
    EXPECT_EQ(manager.getMemoryUsed(), 2000);
    EXPECT_NE(access(b), nullptr);
    EXPECT_FALSE(a->isResourceAllocated());
    EXPECT_EQ(keyOf(b).builds, 2);
    EXPECT_EQ(messages.take(), "Memory limit set to 0.00MB\n");
}

TEST_F(ManagerTest, RoomIsMadeBeforeBuildingForTheSizeThatIsExpected) {
    manager.setMemoryLimit(2500);
    auto const a = shim(make<Key>(1)), b = shim(make<Key>(2, 2000));
    keyOf(b).onBuild = [&] { EXPECT_EQ(a->isResourceAllocated(), keyOf(b).builds == 1); };
    access(a), access(b), access(a), access(b);  // the first build's size is the second one's expectation
    EXPECT_EQ(keyOf(b).builds, 2);
}

TEST_F(ManagerTest, SizesThatWereNotExpectedAreSaid) {
    struct Case {
        unsigned expected, size;
        bool isSaid;
    };
    unsigned const large = 524289;
    int number = 0;
    for (auto [expected, size, isSaid] :
         {Case{0, large, true}, Case{0, large - 1, false}, Case{large - 1023, large, false},
          Case{large - 1024, large, true}, Case{large + 1024, large, true}}) {
        auto const key = make<Key>(++number, size);
        key->expected = expected;
        access(shim(key));
        EXPECT_EQ(messages.take(), isSaid ? "Unanticipated 0.50MB resource!\n" : "") << number;
    }
}

TEST_F(ManagerTest, WithoutALimitTheChecksOfItStillSpeak) {
    auto const a = shim(make<Key>(1, 3 * megabyte));
    keyOf(a).expected = 3 * megabyte;
    manager.startInteraction();
    access(a);
    messages.take();
    manager.lockResource(a), manager.lockResource(a);
    std::string const usage = "\nTotal resource memory: 3.00 MB\nResource type " +
                              std::string(ur::TypeInfo::of<Key>().name()) + ": 3.00 MB\n";
    EXPECT_EQ(messages.take(),
              "Maximum locked size is 3.00MB (0.00 external)\nLocked resources too large for size limit!\n" + usage);
    manager.endInteraction();
    EXPECT_EQ(messages.take(),
              "Maximum working set is 3.00MB (0.00 external)\nWorking set too large for size limit!\n" + usage);
    manager.setMemoryLimit(megabyte);
    EXPECT_EQ(messages.take(),
              "Memory limit set to 1.00MB\nLocked resources exceed memory limit by (2.00MB)\n" + usage);
}

TEST_F(ManagerTest, ExternalMemoryLowersTheLimitUntilItIsGone) {
    manager.setMemoryLimit(4 * megabyte);
    messages.take();
    manager.allocatingExternalResource(megabyte);
    EXPECT_EQ(manager.getMemoryLimit(), 3 * megabyte);
    EXPECT_EQ(messages.take(),
              "Memory limit set to 3.00MB\nCreating a 1.00MB external resource.\n"
              "Maximum locked size is 1.00MB (1.00 external)\n");
    manager.deletedExternalResource(megabyte);
    EXPECT_EQ(messages.take(), "Destroyed a 1.00MB external resource.\nMemory limit set to 4.00MB\n");

    manager.allocatingExternalResource(9 * megabyte);  // more than there is
    EXPECT_EQ(manager.getMemoryLimit(), 1);
    manager.allocatingExternalResource(megabyte);
    manager.deletedExternalResource(9 * megabyte);
    EXPECT_EQ(manager.getMemoryLimit(), 3 * megabyte);
    manager.deletedExternalResource(megabyte);
    EXPECT_EQ(manager.getMemoryLimit(), 4 * megabyte);

    manager.setMemoryLimit(0);  // no limit has nothing to give up
    manager.allocatingExternalResource(megabyte);
    manager.deletedExternalResource(megabyte);
    EXPECT_EQ(manager.getMemoryLimit(), 0);
}

TEST_F(ManagerTest, CountersGoBeyondFourGigabytesAndNarrowOnesStopThere) {
    std::uint64_t const large = 3'000'000'000;
    auto const a = shim(make<Key>(1, static_cast<unsigned>(large))),
               b = shim(make<Key>(2, static_cast<unsigned>(large)));
    manager.setMemoryLimit64(2 * large);
    access(a), access(b);
    EXPECT_EQ(manager.getMemoryUsed64(), 2 * large);
    EXPECT_EQ(manager.getMemoryUsed(), ~0U);
    EXPECT_EQ(manager.getMemoryLimit(), ~0U);
    manager.setMemoryLimit64(2 * large - 1);
    EXPECT_EQ(manager.getMemoryUsed64(), large);
}

TEST_F(ManagerTest, ResidentSizeModeBoundsTheWholeProcess) {
    auto const a = shim(make<Key>(1));
    access(a);
    manager.setUseResidentSize();
    EXPECT_GT(manager.getResidentSize(), megabyte);
    manager.setMemoryLimit(megabyte);  // less than the process has without the cache
    EXPECT_FALSE(a->isResourceAllocated());
    messages.take();
    manager.allocatingExternalResource(10);
    manager.deletedExternalResource(10);
    EXPECT_EQ(manager.getMemoryLimit(), megabyte);
    EXPECT_THAT(messages.take(), HasSubstr("Locked resources exceed memory limit by ("));
    manager.setMemoryLimit(~0U);
    EXPECT_NE(access(a), nullptr);
}

TEST_F(ManagerTest, AKeyThatBuildsNothingIsAskedAgain) {
    auto const a = shim(make<Key>(1, Key::none));
    manager.startInteraction();
    EXPECT_EQ(access(a), nullptr);
    keyOf(a).size = 10;
    EXPECT_NE(access(a), nullptr);
    EXPECT_EQ(manager.statistics().buildsWithout, 1);
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
