// Values shared by scripts and the host, and handles to them.
#include <gtest/gtest.h>

#include <thread>

#include "foundation/nxRFL/values.h"
#include "support/services/Registry.h"

namespace {

using nxRFL::Reader;
using nxRFL::Stack;
using nxSupport::Registry;
using nxSupport::RegistryValue;

template <class T>
RegistryValue valueOf(T const& native) {
    auto* const stack = new Stack;
    nxRFL::Writer writer(*stack);
    nxRFL::write(writer, native);
    return RegistryValue(stack);
}

double numberIn(RegistryValue const& value) { return Reader(*value.getItem()).readDouble(); }

TEST(RegistryValue, IsEmptyForNothingUntilItsItemIsAskedFor) {
    auto* const null = new Stack;
    nxRFL::Writer(*null).writeNull();
    for (RegistryValue const& value : {RegistryValue(), RegistryValue(nullptr), RegistryValue(null)}) {
        EXPECT_FALSE(value);
        EXPECT_TRUE(Reader(*value.getItem()).isNull());
        EXPECT_TRUE(value);
        EXPECT_EQ(value.getItem(), RegistryValue(value).getItem());
    }
}

TEST(RegistryValue, CrossesOverAsACopyAndNoneAsNull) {
    Stack stack;
    nxRFL::Writer writer(stack);
    for (RegistryValue const& value : {valueOf(3.0), RegistryValue()}) write(writer, value);
    Reader reader(stack);
    RegistryValue first = valueOf(1.0), second = first;
    read(reader, first);
    EXPECT_EQ(numberIn(first), 3);
    read(reader, second);
    EXPECT_FALSE(second);
    EXPECT_EQ(reader.kind(), nxRFL::Kind::none);
}

TEST(Registry, SharesValuesThatOutliveTheirKeysAndIsSeenThroughItsCopies) {
    auto registry = std::make_unique<Registry>();
    RegistryValue const one = valueOf(1.0);
    registry->setKey("a", one);
    {
        Registry copy = *registry;
        copy.setKey("b", copy.getKey("a"));
    }
    EXPECT_EQ(registry->getKey("a").getItem(), registry->getKey("b").getItem());
    RegistryValue const read = registry->getKey("a");
    registry->setKey("a", valueOf(2.0));
    EXPECT_EQ(numberIn(read), 1);
    EXPECT_EQ(numberIn(registry->getKey("a")), 2);
    RegistryValue last = registry->getKey("a");
    registry.reset();
    std::thread([value = std::move(last)] { EXPECT_EQ(numberIn(value), 2); }).join();
}

/// Reads the registry in its destructor.
struct KeyChecker : ur::ReferenceCount {
    KeyChecker(Registry& seen, bool& found) : registry(seen), hasKey(found) {}
    ~KeyChecker() override { hasKey = registry.hasKey("key") && !registry.getKey("key"); }

    Registry& registry;
    bool& hasKey;
};

TEST(Registry, IsWholeWhenAnOverwrittenObjectGoes) {
    nxRFL::Database database;
    Registry registry;
    bool hadKey = false;
    registry.setKey("key", valueOf(ur::make<KeyChecker>(registry, hadKey)));
    registry.setKey("key", RegistryValue());
    static_cast<void>(registry.getKey("key").getItem());
    EXPECT_TRUE(hadKey && !registry.getKey("key"));
}

}  // namespace
