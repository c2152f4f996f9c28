// Building, evicting, locking, limits, interactions, and what is said about them.
#include <gmock/gmock.h>

#include <stdexcept>

#include "krcache/tests/TestKeys.h"

namespace urKRCache::test {
namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using ur::make;
using ur::Reference;

constexpr unsigned megabyte = 1048576;

struct ManagerTest : testing::Test, Cache {
    void TearDown() override { EXPECT_EQ(manager.audit(), ""); }

    /// "Total" and, when there is any, the only class of keys in memory.
    static std::string usage(char const* total, bool any) {
        std::string const type = ur::TypeInfo::of<Key>().name();
        return "\nTotal resource memory: " + std::string(total) + " MB\n" +
               (any ? "Resource type " + type + ": " + total + " MB\n" : "");
    }

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
    EXPECT_EQ(manager.numKeys(), 1);
}

TEST_F(ManagerTest, AHashOfZeroIsComputedEachTime) {
    auto const key = make<Key>(1);
    key->hash = 0;
    auto const shim = manager.getShim(key, Shim::Retained);
    int const before = key->hashes;
    EXPECT_EQ(manager.findShim(key), shim);
    EXPECT_EQ(key->hashes, before + 1);
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

TEST_F(ManagerTest, AResourceLargerThanTheLimitIsGoneAgainUnlessLockedOrPagedOut) {
    manager.setMemoryLimit(500);
    auto const a = shim(make<Key>(1)), paged = shim(make<Key>(2)), locked = shim(make<Key>(3));
    EXPECT_EQ(access(a), nullptr);
    EXPECT_EQ(keyOf(a).builds, 1);
    manager.setSerializable(paged);
    EXPECT_NE(access(paged), nullptr);
    EXPECT_TRUE(paged->isResourceSerialized());
    messages.take();
    manager.lockResource(locked);
    EXPECT_NE(access(locked), nullptr);
    EXPECT_EQ(messages.take(),
              "Maximum locked size is 0.00MB (0.00 external)\n"
              "Locked resources exceed memory limit by (0.00MB)\n" +
                  usage("0.00", true));
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

TEST_F(ManagerTest, LocksNestAndHoldAgainstEviction) {
    auto const a = shim(make<Key>(1, 3 * megabyte));
    keyOf(a).expected = 3 * megabyte;
    manager.unlockResource(a);  // no lock: nothing
    access(a);
    messages.take();
    manager.lockResource(a), manager.lockResource(a);
    EXPECT_EQ(messages.take(),
              "Maximum locked size is 3.00MB (0.00 external)\n"
              "Locked resources too large for size limit!\n" +
                  usage("3.00", true));
    manager.clear();
    manager.clearResource(a);
    manager.unlockResource(a);
    EXPECT_TRUE(a->isResourceLocked());
    manager.setMemoryLimit(megabyte);
    EXPECT_EQ(messages.take(),
              "Resources cleared.\nMemory limit set to 1.00MB\n"
              "Locked resources exceed memory limit by (2.00MB)\n" +
                  usage("3.00", true));
    manager.unlockResource(a);
    EXPECT_TRUE(a->isResourceAllocated());  // unlocking evicts nothing
    manager.enforceMemoryLimit(0);
    EXPECT_FALSE(a->isResourceAllocated());
    manager.setMemoryLimit(5 * megabyte);
    messages.take();
    manager.lockResource(a);
    access(a);  // built while locked: counted at once, but no peak
    EXPECT_EQ(messages.take(), "");
}

TEST_F(ManagerTest, TheWorkingSetIsThePeakOfWhatAnInteractionTouches) {
    manager.setMemoryLimit(10 * megabyte);
    auto const a = shim(make<Key>(1, 2 * megabyte)), b = shim(make<Key>(2, megabyte));
    access(a);
    messages.take();
    manager.startInteraction();
    access(a), access(a), access(a);
    manager.clearResource(a);
    access(b);
    manager.endInteraction();
    EXPECT_EQ(messages.take(), "Unanticipated 1.00MB resource!\nMaximum working set is 2.00MB (0.00 external)\n");
    manager.startInteraction();
    access(b);
    manager.endInteraction();
    EXPECT_EQ(messages.take(), "");
    manager.setMemoryLimit(2 * megabyte);
    messages.take();
    manager.startInteraction();
    manager.endInteraction();
    EXPECT_EQ(messages.take(), "Working set too large for size limit!\n" + usage("1.00", true));
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
