// Tests counted references, class identities, the ordered map and the hash.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/TypeInfo.h"
#include "foundation/ur/containers.h"
#include "foundation/ur/functionName.h"
#include "foundation/ur/hashfunction.h"
#include "foundation/ur/keepAlive.h"

namespace {

struct Counted : ur::ReferenceCount {
    explicit Counted(int* counter) : alive(counter) { ++*alive; }
    ~Counted() override {
        onDestroy();
        --*alive;
    }
    int* alive;
    std::function<void()> onDestroy = [] {};
};
struct Derived : Counted {
    using Counted::Counted;
};

TEST(Reference, CountsHoldersAndDeletesWithTheLast) {
    int alive = 0;
    auto first = ur::make<Derived>(&alive);
    EXPECT_EQ(first->referenceCount(), 1);
    ur::Reference<Counted const> second = first;
    EXPECT_EQ(first->referenceCount(), 2);
    ur::Reference<Counted const> moved = std::move(second);
    EXPECT_TRUE(second.null());
    EXPECT_EQ(first->referenceCount(), 2);
    auto const& same = moved;
    moved = same;
    first.reset();
    EXPECT_EQ(alive, 1);
    EXPECT_TRUE(ur::dynamicCast<Derived const>(moved));
    moved = nullptr;
    EXPECT_EQ(alive, 0);
    first = new Derived(&alive);
    first->onDestroy = [&, old = first.get()] { EXPECT_NE(first.get(), old) << "sees its replacement"; };
    first = new Derived(&alive);
    EXPECT_EQ(alive, 1);
    EXPECT_TRUE(first != nullptr);
    EXPECT_TRUE(moved == nullptr);
    Counted onStack(&alive);
    EXPECT_TRUE(ur::keepAlive(onStack).null());
    EXPECT_EQ(ur::keepAlive(*first), first);
}

TEST(Reference, ACopiedObjectStartsUnshared) {
    struct Plain : ur::ReferenceCount {};
    auto original = ur::make<Plain>();
    auto other = original;
    auto copy = ur::make<Plain>(*original);
    EXPECT_EQ(copy->referenceCount(), 1);
    *copy = *original;
    EXPECT_EQ(copy->referenceCount(), 1);
    EXPECT_EQ(original->referenceCount(), 2);
}

TEST(TypeInfo, IdentifiesTheDynamicClass) {
    int alive = 0;
    Derived derived(&alive);
    Counted& base = derived;
    EXPECT_EQ(ur::TypeInfo::of(base), ur::TypeInfo::of<Derived>());
    EXPECT_NE(ur::TypeInfo::of<Counted>(), ur::TypeInfo::of<Derived>());
    EXPECT_NE(ur::TypeInfo::of<Counted>() < ur::TypeInfo::of<Derived>(),
              ur::TypeInfo::of<Derived>() < ur::TypeInfo::of<Counted>());
    EXPECT_EQ(ur::TypeInfo::of<ur::ReferenceCount>().readableName(), "ur::ReferenceCount");
}

void hidden() {}

TEST(FunctionName, IsTheSymbolOrAPlaceInAFile) {
#if defined(_WIN32)
    EXPECT_EQ(ur::functionName(&hidden).find("0x"), 0U);
#else
    EXPECT_EQ(ur::functionName(&std::abort), "abort");
    EXPECT_NE(ur::functionName(&hidden).find("+0x"), std::string::npos);
#endif
    EXPECT_EQ(ur::functionName(nullptr), "0x0");
}

struct LastDigit {
    int number;
    friend bool operator<(LastDigit a, LastDigit b) { return a.number % 10 < b.number % 10; }
};

TEST(Map, AsksForNothingButTheOrderAndAlignsItsValues) {
    ur::map<LastDigit, long double> map;
    static_assert(sizeof map == sizeof(void*));
    map[{17}] = 1;
    map[{27}] = 2;
    EXPECT_EQ(map.size(), 1U);
    EXPECT_EQ(map.at({7}), 2);
    EXPECT_EQ(map.count({18}), 0U);
    EXPECT_THROW(static_cast<void>(map.at({18})), std::out_of_range);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&map.at({7})) % alignof(long double), 0U);
}

TEST(HashFunction, GivesThePublishedValues) {
    EXPECT_EQ(ur::hashfunction(""), 0x811c9dc5U);
    EXPECT_EQ(ur::hashfunction("a"), 0xe40c292cU);
    EXPECT_EQ(ur::hashfunction("foobar"), 0xbf9cf968U);
}

}  // namespace
