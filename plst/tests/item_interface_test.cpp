// Tests items inside packets of other formats.
#include <gtest/gtest.h>

#include "foundation/io/tests/packetFiles.h"
#include "plst/ReadInterface.h"
#include "plst/WriteInterface.h"
#include "plst/casts.h"
#include "plst/tests/trees.h"

namespace {

using namespace nxPLST;
using namespace nxPLST::test;

/// A custom format: packets "own" with the content of each test.
class OwnFormat {
public:
    /// Makes the smallest buffers that much larger.
    explicit OwnFormat(std::size_t extra = 0) : extra_(extra) {}

    std::string write(std::function<void(WriteInterface&)> const& fill) {
        auto const packet = [&](ioWriteContext& context) {
            WriteInterface items(context);
            context.startPacket("own", this);
            fill(items);
            context.endPacket();
        };
        auto const addTypes = [](ioSimplePacketRegistry& types) {
            ReadInterface::registerTypes(types, nullptr);
            types.add("own");
        };
        return ioTest::written(packet, 0, addTypes, ioTest::leastOutput + extra_);
    }

    int read(std::string const& bytes, std::function<void(ReadInterface&)> fill) {
        ioTest::Trickle stream(bytes, 100);
        ioBufferedStreamInput input(ioTest::leastInput + extra_);
        static_cast<void>(input.openIOStream(stream));
        ioSimplePacketRegistry registry(true);
        auto const context = ioReadContextAlloc(input, registry);
        ReadInterface items(*context);
        ReadInterface::registerTypes(registry, &items);
        items_ = &items;
        fill_ = std::move(fill);
        registry.supportedType(std::make_unique<ioSimplePacketType>(
            "own", std::make_unique<ioMemberReadCallback<OwnFormat>>(*this, &OwnFormat::readOwn)));
        context->readFile(items);
        return context->getStatus();
    }

private:
    void readOwn() {
        items_->context().definePacketObject(this);
        fill_(*items_);
    }

    std::size_t extra_;
    ReadInterface* items_ = nullptr;
    std::function<void(ReadInterface&)> fill_;
};

TEST(ItemInterfaces, ServeFormatsThatHoldItemsAmongOtherThings) {
    auto const parent = arrayOf({make<String>("first child"), make<Double>(2)});
    OwnFormat format;
    std::string const bytes = format.write([&](WriteInterface& items) {
        items.context().writeIntValue(4711);
        items.writeItem(parent->objectAt(0));  // first alone, so that the tree must not write it again
        items.writeArray(parent);
        items.writeItem(nullptr);
        items.writeDouble(asDouble(parent->objectAt(1)));
        items.writeArray(parent);
    });
    EXPECT_EQ(bytes.find("first child"), bytes.rfind("first child"));
    int const status = format.read(bytes, [](ReadInterface& items) {
        EXPECT_EQ(items.context().readIntValue(), 4711);
        auto const first = items.readString();
        auto const array = items.readArray();
        ASSERT_TRUE(array);
        EXPECT_EQ(array->objectAt(0), first);
        EXPECT_EQ(items.readItem(), nullptr);
        EXPECT_EQ(items.readDictionary(), nullptr) << "it is a number";
        ReadInterface copy(items);
        EXPECT_EQ(copy.readItem(), array);
    });
    EXPECT_EQ(status, 0);
}

TEST(ItemInterfaces, RestoreTreesOfAnyShapeThroughBuffersOfEverySize) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        OwnFormat format(seed % 40);
        auto const tree = RandomTrees(seed).sharingTree(5);
        std::string const bytes = format.write(
            [&](WriteInterface& items) { seed % 2 ? items.writeItem(tree) : items.writeSeparateTree(tree); });
        int const status = format.read(bytes, [&](ReadInterface& items) { EXPECT_TRUE(same(items.readItem(), tree)); });
        EXPECT_EQ(status, 0) << "seed " << seed;
    }
}

TEST(ItemInterfaces, RefuseAReferenceToANonItem) {
    OwnFormat format;
    std::string bytes = format.write([](WriteInterface& items) { items.writeItem(nullptr); });
    bytes[bytes.rfind('\xC0')] = '\xC1';  // turns the null reference into one to the enclosing object
    int const status = format.read(bytes, [](ReadInterface& items) { EXPECT_EQ(items.readItem(), nullptr); });
    EXPECT_EQ(status, number(ioStatus::malformed));
}

}  // namespace
