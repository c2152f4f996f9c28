// Item trees as packets.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "foundation/io/ioReadContext.h"
#include "foundation/io/ioSimplePacketRegistry.h"
#include "foundation/io/ioWriteContext.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "plst/ReadInterface.h"
#include "plst/WriteInterface.h"
#include "plst/casts.h"
#include "plst/packets.h"
#include "plst/tests/plainYajl.h"
#include "plst/tests/smallStack.h"

namespace {

using namespace nxPLST;
using namespace nxPLST::test;
using ur::make;
using ur::Reference;

int number(ioStatus status) { return static_cast<int>(status); }

std::string bytesOf(Reference<Item const> item, int expectedStatus = 0) {
    urOS::MemoryIOStream stream;
    static_cast<void>(stream.open(urOS::openForWriting));
    PacketReport report;
    EXPECT_EQ(write(stream, std::move(item), report), expectedStatus == 0);
    EXPECT_EQ(report.status, expectedStatus) << ioStatusText(report.status);
    return std::string(stream.contents());
}

bool readFrom(std::string_view bytes, Reference<Item>& item, PacketReport& report) {
    urOS::MemoryIOStream stream;
    static_cast<void>(stream.open(urOS::openForWriting));
    static_cast<void>(stream.write(bytes.data(), bytes.size()));
    static_cast<void>(stream.open(urOS::openRead));
    return read(stream, item, report);
}

Reference<Item> readBack(std::string_view bytes) {
    Reference<Item> item;
    PacketReport report;
    EXPECT_TRUE(readFrom(bytes, item, report)) << ioStatusText(report.status) << " at " << report.position;
    return item;
}

/// Whether both trees are equal to the bit.
bool same(Reference<Item> const& a, Reference<Item> const& b) {
    if (!a || !b || a->type() != b->type()) return a == b;
    switch (a->type()) {
        case BoolType: return asBool(a)->value() == asBool(b)->value();
        case StringType: return asString(a)->value() == asString(b)->value();
        case DoubleType:
            return std::bit_cast<std::uint64_t>(asDouble(a)->value()) ==
                   std::bit_cast<std::uint64_t>(asDouble(b)->value());
        case ArrayType: return std::ranges::equal(asArray(a)->array(), asArray(b)->array(), same);
        default:
            return std::ranges::equal(
                asDictionary(a)->dictionary(), asDictionary(b)->dictionary(),
                [](auto const& x, auto const& y) { return x.first == y.first && same(x.second, y.second); });
    }
}

Reference<Array> arrayOf(std::vector<Reference<Item>> elements) {
    auto array = make<Array>();
    array->array() = std::move(elements);
    return array;
}

Reference<Dictionary> dictionaryOf(std::vector<std::pair<char const*, Reference<Item>>> const& entries) {
    auto dictionary = make<Dictionary>();
    for (auto const& [key, value] : entries) dictionary->insert(key, value);
    return dictionary;
}

/// Holds every kind of item, a shared one and every form that a value has.
Reference<Dictionary> sample() {
    auto const shared = make<String>("shared");
    return dictionaryOf(
        {{"flags", arrayOf({make<Bool>(true), make<Bool>(false)})},
         {"name", shared},
         {"numbers", arrayOf({make<Double>(1), make<Double>(-0.0), make<Double>(0.1)})},
         {"other", dictionaryOf({{"again", shared}, {"empty", arrayOf({})}, {"far", make<Double>(1e6)}})},
         {"text", make<String>("a text that is longer than what one token can tell")}});
}

Reference<Item> randomTree(std::mt19937& random, std::vector<Reference<Item>>& pool, int depth) {
    Reference<Item> item;
    switch (random() % (depth > 0 ? 7 : 3)) {
        case 0: item = make<Bool>(random() % 2 == 0); break;
        case 1: item = make<Double>(std::bit_cast<double>(std::uint64_t{random()} << 32 | random())); break;
        case 2: item = make<String>(urString::CString(random() % 70, 'x')); break;
        case 3: return pool.empty() ? Reference<Item>() : pool[random() % pool.size()];
        case 4:
        case 5: {
            auto array = make<Array>();
            for (auto n = random() % 6; n > 0; --n) array->insert(randomTree(random, pool, depth - 1));
            item = array;
            break;
        }
        default: {
            auto dictionary = make<Dictionary>();
            for (auto n = random() % 30; n > 0; --n) {
                dictionary->insert(urString::CString::format("%u", unsigned(random() % 50)),
                                   randomTree(random, pool, depth - 1));
            }
            item = dictionary;
        }
    }
    pool.push_back(item);
    return item;
}

TEST(ItemPackets, BringEveryTreeBack) {
    Reference<Item> const trees[] = {
        nullptr,
        make<Bool>(true),
        make<Double>(-0.0),
        make<String>(""),
        arrayOf({}),
        make<Dictionary>(),
        arrayOf({nullptr, make<Double>(2)}),
        sample(),
    };
    for (auto const& tree : trees) EXPECT_TRUE(same(readBack(bytesOf(tree)), tree));
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        std::vector<Reference<Item>> pool;
        auto const tree = randomTree(random, pool, 5);
        ASSERT_TRUE(same(readBack(bytesOf(tree)), tree)) << "seed " << seed;
    }
}

TEST(ItemPackets, CutTextsAndKeysAtTheirFirstNul) {
    auto dictionary = make<Dictionary>();
    dictionary->insert(urString::CString("k\0x", 3), make<String>(urString::CString("v\0y", 3)));
    EXPECT_TRUE(same(readBack(bytesOf(dictionary)), dictionaryOf({{"k", make<String>("v")}})));
}

TEST(ItemPackets, KeepSharedItemsSharedAndWriteThemOnce) {
    auto const shared = make<String>("once upon a time");
    auto const tree = arrayOf({shared, arrayOf({shared}), shared});
    std::string const bytes = bytesOf(tree);
    EXPECT_EQ(bytes.find("once"), bytes.rfind("once"));
    auto const read = asArray(readBack(bytes));
    EXPECT_EQ(read->objectAt(0), read->objectAt(2));
    EXPECT_EQ(read->objectAt(0), asArray(read->objectAt(1))->objectAt(0));
}

TEST(ItemPackets, DoubleWithEachLevelWithoutDoublingTheFile) {
    Reference<Item> tree = make<Bool>(true);
    for (int i = 0; i < 60; ++i) tree = arrayOf({tree, tree});
    std::string const bytes = bytesOf(tree);
    EXPECT_LT(bytes.size(), 400U);
    Reference<Item> read = readBack(bytes);
    for (int i = 0; i < 60; ++i) read = asArray(read)->objectAt(1);
    EXPECT_EQ(read->type(), BoolType);
}

TEST(ItemPackets, RefuseATreeInsideItself) {
    auto const inner = make<Dictionary>();
    auto const outer = arrayOf({make<Bool>(), inner});
    inner->insert("outer", outer);
    bytesOf(outer, number(ioStatus::cycle));
    inner->dictionary().clear();
}

TEST(ItemPackets, RefuseAnItemOfNoKnownKind) {
    bytesOf(make<Stranger>(), number(ioStatus::unresolvedReference));
    bytesOf(arrayOf({make<Bool>(), make<Stranger>(), make<Bool>()}), number(ioStatus::unresolvedReference));
}

TEST(ItemPackets, AreAsTheDocumentationShows) {
    std::ifstream page(NX_SOURCE_DIR "/docs/packets.md");
    std::string documented;
    bool inside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("```")) inside = line == "```hex";
        if (!inside || line.starts_with("```")) continue;
        // What stands behind the digits, two spaces away, explains them.
        std::istringstream digits(line.substr(0, line.find("  ", line.find_first_not_of(' '))));
        for (std::string byte; digits >> byte;) documented += static_cast<char>(std::stoi(byte, nullptr, 16));
    }
    auto const shared = make<String>("tag");
    auto const tree = dictionaryOf({{"a", arrayOf({shared, make<Double>(0.5), shared})}, {"b", make<Bool>(true)}});
    EXPECT_EQ(bytesOf(tree), documented);
    EXPECT_TRUE(same(readBack(documented), tree));
}

TEST(ItemPackets, NeverReadATruncatedFileAsWhole) {
    std::string const bytes = bytesOf(sample());
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        Reference<Item> item;
        PacketReport report;
        EXPECT_FALSE(readFrom(bytes.substr(0, size), item, report));
        EXPECT_EQ(report.status, number(ioStatus::truncated)) << size;
        EXPECT_EQ(report.position, size);
    }
    Reference<Item> item;
    PacketReport report;
    EXPECT_FALSE(readFrom(bytes.substr(0, bytes.size() - 1), item, report));
    EXPECT_TRUE(same(item, sample())) << "the root was read whole";
}

/// The start of a file that names these types of item packets, numbered from 0.
std::string fileWith(std::initializer_list<std::string_view> types) {
    std::string bytes = bytesOf(nullptr).substr(0, 8);
    for (std::string_view type : types) {
        std::string const name = "vexo.nx.plst." + std::string(type);
        bytes += '\x05';
        bytes += static_cast<char>(ioFormat::token(ioFormat::text, static_cast<unsigned>(name.size())));
        bytes += name;
    }
    return bytes;
}

/// Reading must end, and what it calls a success must be a tree.
void expectSoundReading(std::string const& bytes) {
    Reference<Item> item;
    PacketReport report;
    bool const isTree = readFrom(bytes, item, report) && item;
    EXPECT_TRUE(!isTree || item->clone()->congruent(*item));
}

TEST(ItemPackets, ReadEveryChangedByteAsAFaultOrAsATree) {
    std::string bytes = bytesOf(sample());
    for (char& byte : bytes) {
        char const former = byte;
        for (int change = 1; change < 256; ++change) {
            byte = static_cast<char>(former ^ change);
            expectSoundReading(bytes);
        }
        byte = former;
    }
}

TEST(ItemPackets, SurviveRandomTokens) {
    std::string const start = fileWith({"SimpleItem", "Array", "Dictionary", "Double", "Unknown"}) + "\xA0";
    // Tokens that make sense somewhere: packets, small and long numbers, texts, references, marks.
    std::string const tokens =
        "\x80\x81\x82\x83\x84\xA1\xA1\xA2\xA3\xA4\xE0\x61k\xE1\x20\x22\x24\x3F\x61x\x60\xC0\xC1\xC2\x01\x02\x03\x04\x04"
        "\x04\x06";
    for (unsigned seed = 0; seed < 20000; ++seed) {
        std::mt19937 random(seed);
        std::string bytes = start;
        for (auto n = random() % 60; n > 0; --n) bytes += tokens[random() % tokens.size()];
        expectSoundReading(bytes + std::string(random() % 4, '\x04') + "\x03\x06");
    }
}

TEST(ItemPackets, DoNotBelieveASizeBeforeTheElementsAreThere) {
    std::string const head = fileWith({"SimpleItem", "Array"}) + "\xA0\x81";
    for (char const* size : {"\x3F\xDF\xFF\xFF\xFF\x0F" /* 2^31 - 1 */, "\x21" /* -1 */}) {
        Reference<Item> item;
        PacketReport report;
        EXPECT_FALSE(readFrom(head + size + "\xC0\xC0\xC0", item, report));
        EXPECT_EQ(item, nullptr);
    }
}

TEST(ItemPackets, GoAMillionLevelsDeepOnASmallStack) {
    onSmallStack(
        [] {
            Reference<Item> tree = make<Double>(1);
            for (int i = 0; i < 1000000; ++i)
                tree = i % 2 ? Reference<Item>(dictionaryOf({{"k", tree}})) : arrayOf({tree});
            auto const read = readBack(bytesOf(tree));
            EXPECT_TRUE(read && read->congruent(*tree));
        },
        leastStack);
}

TEST(ItemPackets, BegunInsideEachOtherWhereNoReferenceIsAreRefusedBeforeTheStackEnds) {
    std::string const head = fileWith({"Array"});
    onSmallStack(
        [&] {
            Reference<Item> item;
            PacketReport report;
            EXPECT_FALSE(readFrom(head + std::string(1000000, '\x80'), item, report));
            EXPECT_EQ(report.status, number(ioStatus::tooDeep));
        },
        leastStack);
}

TEST(ItemPackets, ReportAStreamThatFails) {
    urOS::MemoryIOStream closed;
    PacketReport report;
    EXPECT_FALSE(write(closed, make<Bool>(true), report));
    EXPECT_EQ(report.status, number(ioStatus::streamFailed));
    Reference<Item> item = make<Bool>(true);
    EXPECT_FALSE(read(closed, item, report));
    EXPECT_EQ(report.status, number(ioStatus::streamFailed));
    EXPECT_EQ(item, nullptr);
}

/// A format of its own: packets "own" with whatever a test puts into them.
class OwnFormat {
public:
    std::string write(std::function<void(WriteInterface&)> const& fill) {
        urOS::MemoryIOStream stream;
        static_cast<void>(stream.open(urOS::openForWriting));
        ioBufferedStreamOutput output;
        static_cast<void>(output.openIOStream(stream));
        ioSimplePacketRegistry registry(false);
        ReadInterface::registerTypes(registry, nullptr);
        registry.add("own");
        auto const context = ioWriteContextAlloc(output, 1, registry);
        WriteInterface items(*context);
        context->startFile();
        context->startPacket("own", this);
        fill(items);
        context->endPacket();
        context->endFile();
        EXPECT_EQ(context->getStatus(), 0);
        static_cast<void>(output.close());
        return std::string(stream.contents());
    }

    int read(std::string const& bytes, std::function<void(ReadInterface&)> fill) {
        urOS::MemoryIOStream stream;
        static_cast<void>(stream.open(urOS::openForWriting));
        static_cast<void>(stream.write(bytes.data(), bytes.size()));
        static_cast<void>(stream.open(urOS::openRead));
        ioBufferedStreamInput input;
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

    ReadInterface* items_ = nullptr;
    std::function<void(ReadInterface&)> fill_;
};

TEST(ItemInterfaces, ServeFormatsThatHoldItemsAmongOtherThings) {
    auto const parent = arrayOf({make<String>("first child"), make<Double>(2)});
    OwnFormat format;
    std::string const bytes = format.write([&](WriteInterface& items) {
        items.context().writeIntValue(4711);
        items.writeItem(parent->objectAt(0));  // by itself first, so that the tree must not write it again
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
        ASSERT_TRUE(first && array);
        EXPECT_EQ(array->objectAt(0), first);
        EXPECT_EQ(items.readItem(), nullptr);
        EXPECT_EQ(items.readDictionary(), nullptr) << "it is a number";
        ReadInterface copy(items);
        EXPECT_EQ(copy.readItem(), array);
    });
    EXPECT_EQ(status, 0);
}

TEST(ItemInterfaces, BringBackTreesOfAnyShapeAndDepth) {
    OwnFormat format;
    auto const expectBack = [&](Reference<Item> const& tree, auto const& equal) {
        std::string const bytes = format.write([&](WriteInterface& items) { items.writeItem(tree); });
        EXPECT_EQ(format.read(bytes, [&](ReadInterface& items) { EXPECT_TRUE(equal(items.readItem(), tree)); }), 0);
    };
    for (unsigned seed = 0; seed < 100; ++seed) {
        std::mt19937 random(seed);
        std::vector<Reference<Item>> pool;
        expectBack(randomTree(random, pool, 5), same);
    }
    onSmallStack(
        [&] {
            Reference<Item> tree = make<Bool>(true);
            for (int i = 0; i < 300000; ++i) tree = arrayOf({tree});
            expectBack(tree, [](auto const& a, auto const& b) { return a && a->congruent(*b); });
        },
        leastStack);
}

TEST(ItemInterfaces, RefuseAReferenceToWhatIsNoItem) {
    OwnFormat format;
    std::string bytes = format.write([](WriteInterface& items) { items.writeItem(nullptr); });
    bytes[bytes.rfind('\xC0')] = '\xC1';  // the null reference becomes one to the object around it
    int const status = format.read(bytes, [](ReadInterface& items) { EXPECT_EQ(items.readItem(), nullptr); });
    EXPECT_EQ(status, number(ioStatus::malformed));
}

}  // namespace
