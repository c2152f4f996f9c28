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
    EXPECT_EQ(shim->keyType(), Shim::Retained);
    EXPECT_EQ(shim->keyData(), first);
    EXPECT_EQ(first->hashes, 1);
    EXPECT_EQ(manager.findShim(make<Key>(*first)), shim);
    auto const changedCopy = make<Key>(*first);
    changedCopy->number = 2, changedCopy->hash = 8;
    EXPECT_EQ(manager.findShim(changedCopy), nullptr);

    auto const other = make<OtherKey>(1);
    EXPECT_EQ(manager.findShim(other), nullptr);
    int const order = typeid(Key).before(typeid(OtherKey)) ? -1 : 1;
    EXPECT_EQ(first->compare(other.get()), order);
    EXPECT_EQ(other->compare(first.get()), -order);
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

TEST_F(ManagerTest, ProxiesCountNothing) {
    struct Proxy : Resource {
        Proxy() : Resource(true) {}
        unsigned onGetSizeInBytes() const override { throw std::logic_error("asked"); }
    };
    auto const a = shim(make<Key>(1));
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
    EXPECT_EQ(manager.getMemoryUsed(), ~0U);
    EXPECT_EQ(manager.getMemoryLimit(), ~0U);
    manager.setMemoryLimit64(2 * large - 1);
    EXPECT_EQ(manager.getMemoryUsed64(), large);
}

TEST_F(ManagerTest, ExternalResourcesTakeTheirBytesFromTheLimit) {
    auto const a = shim(make<Key>(1));
    access(a);
    manager.setMemoryLimit(5000);
    manager.allocatingExternalResource(4000);
    EXPECT_EQ(manager.getMemoryLimit(), 1000);
    EXPECT_EQ(states({a}), "m");
    manager.allocatingExternalResource(3000);
    EXPECT_EQ(manager.getMemoryLimit(), 1);  // 0 means no limit
    EXPECT_EQ(states({a}), "-");
    manager.deletedExternalResource(3000);
    EXPECT_EQ(manager.getMemoryLimit(), 1000);
    manager.allocatingExternalResource(3000);
    for (unsigned const limit : {7, 0}) {
        manager.setMemoryLimit(limit);
        manager.deletedExternalResource(3000);
        EXPECT_EQ(manager.getMemoryLimit(), limit == 0 ? 0 : 3007);
        manager.allocatingExternalResource(3000);
    }
}

TEST_F(ManagerTest, PeaksAreReportedAndWarningsComeWithTheUsage) {
    auto const key = make<Key>(1, megabyte), other = Reference<Key>(new ElsewhereKey(2, 2 * megabyte));
    key->expected = key->size, other->expected = other->size;
    auto const a = shim(key), b = shim(other);
    manager.setMemoryLimit(4 * megabyte);
    manager.startInteraction();
    access(b), manager.clearResource(b);
    manager.lockResource(a), access(a), access(a);
    manager.endInteraction();
    EXPECT_EQ(messages.take(),
              "Memory limit set to 4.00MB\nMaximum locked size is 1.00MB (0.00 external)\n"
              "Maximum working set is 2.00MB (0.00 external)\n");
    std::string const usage = std::string("\nTotal resource memory: 3.00 MB\nResource type ") +
                              ur::TypeInfo::of<ElsewhereKey>().name() + ": 2.00 MB\nResource type " +
                              ur::TypeInfo::of<Key>().name() + ": 1.00 MB\n";
    manager.startInteraction();
    manager.allocatingExternalResource(megabyte), access(b), access(a), manager.deletedExternalResource(megabyte);
    manager.endInteraction();
    EXPECT_EQ(messages.take(),
              "Memory limit set to 3.00MB\nCreating a 1.00MB external resource.\n"
              "Maximum locked size is 2.00MB (1.00 external)\nDestroyed a 1.00MB external resource.\n"
              "Memory limit set to 4.00MB\nMaximum working set is 4.00MB (0.00 external)\n"
              "Working set too large for size limit!\n" +
                  usage);
    manager.lockResource(b), manager.setMemoryLimit(megabyte);
    manager.unlockResource(b), manager.lockResource(b);
    EXPECT_EQ(messages.take(),
              "Maximum locked size is 3.00MB (0.00 external)\nMemory limit set to 1.00MB\n"
              "Locked resources exceed memory limit by (2.00MB)\n" +
                  usage + "Locked resources too large for size limit!\n" + usage);
}

std::uint64_t resident;
int samples;

TEST(ResidentSize, IsSampledNowAndThenAndLessThanResourcesClaim) {
    Cache cache({.sampleInterval = 100, .residentSize = [] { return ++samples, resident; }});
    auto const elsewhere = cache.shim(Reference<Key>(new ElsewhereKey(1, 3000))),
               claims = cache.shim(make<Key>(2, 10'000));
    auto const request = [&](int times) {
        for (; times > 0; --times) cache.manager.enforceMemoryLimit(0);
    };
    resident = 1000;
    cache.manager.setUseResidentSize();
    cache.manager.setMemoryLimit(5000);
    cache.manager.deletedExternalResource(10);  // in the resident size already
    EXPECT_EQ(cache.manager.getMemoryLimit(), 5000);
    request(9);
    EXPECT_EQ(samples, 1);
    cache.access(elsewhere), cache.access(claims);
    EXPECT_EQ(samples, 3);
    resident = 2500;
    request(10);
    EXPECT_EQ(states({elsewhere, claims}), "mm");
    EXPECT_EQ(samples, 3);
    request(1);
    EXPECT_EQ(states({elsewhere, claims}), "-m");
    EXPECT_EQ(samples, 4);
    cache.manager.clear();
    resident = 1500, cache.access(elsewhere), cache.access(claims);  // reserving the claim takes no room from others
    EXPECT_EQ(states({elsewhere, claims}), "mm");
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
