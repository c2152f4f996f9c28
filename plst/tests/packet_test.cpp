// Tests item trees as packets.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>

#include "foundation/io/tests/packetFiles.h"
#include "foundation/ur/tests/smallStack.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "plst/casts.h"
#include "plst/packets.h"
#include "plst/tests/trees.h"

namespace {

using namespace nxPLST;
using namespace nxPLST::test;

std::string bytesOf(Reference<Item const> item, int expectedStatus = 0) {
    urOS::MemoryIOStream stream;
    static_cast<void>(stream.open(urOS::openForWriting));
    PacketReport report;
    EXPECT_EQ(write(stream, std::move(item), report), expectedStatus == 0);
    EXPECT_EQ(report.status, expectedStatus) << ioStatusText(report.status);
    EXPECT_EQ(report.position, stream.size());
    return std::string(stream.contents());
}

/// The result and the report of reading these bytes.
struct Reading : PacketReport {
    explicit Reading(std::string bytes) {
        ioTest::Trickle stream(std::move(bytes), 1000);
        ok = read(stream, item, *this);
    }
    Reference<Item> item;
    bool ok;
};

Reference<Item> readBack(std::string_view bytes) {
    Reading const reading{std::string(bytes)};
    EXPECT_TRUE(reading.ok) << ioStatusText(reading.status) << " at " << reading.position;
    return reading.item;
}

/// Contains every kind of item, a shared item and every form of a value.
Reference<Dictionary> sample() {
    auto const shared = make<String>("shared");
    return dictionaryOf(
        {{"flags", arrayOf({make<Bool>(true), make<Bool>(false)})},
         {"name", shared},
         {"numbers", arrayOf({make<Double>(1), make<Double>(-0.0), make<Double>(0.1)})},
         {"other", dictionaryOf({{"again", shared}, {"empty", arrayOf({})}, {"far", make<Double>(1e6)}})},
         {"text", make<String>("a text that is longer than what one token can tell")}});
}

TEST(ItemPackets, RestoreEveryTree) {
    Reference<Item> const trees[] = {
        nullptr,     make<Bool>(true),   make<Double>(std::nan("")),          make<String>(""),
        arrayOf({}), make<Dictionary>(), arrayOf({nullptr, make<Double>(2)}), sample(),
    };
    for (auto const& tree : trees) EXPECT_TRUE(same(readBack(bytesOf(tree)), tree));
    for (unsigned seed = 0; seed < 300; ++seed) {
        auto const tree = RandomTrees(seed).sharingTree(5);
        ASSERT_TRUE(same(readBack(bytesOf(tree)), tree)) << "seed " << seed;
    }
}

TEST(ItemPackets, MayHaveTheKeysOfALargeDictionaryInAnyOrder) {
    constexpr int count = 6000;
    auto const key = [](int i) { return "key" + std::to_string(10000 + i); };
    auto const ascending = make<Dictionary>(), reversed = make<Dictionary>();
    for (int i = 0; i < count; ++i) {
        ascending->insert(key(i), make<Double>(i));
        reversed->insert(key(count - 1 - i), make<Double>(i));
    }
    std::string bytes = bytesOf(ascending);
    std::size_t at = 0;
    for (int i = 0; i < count; ++i) {
        at = bytes.find(key(i), at);
        ASSERT_NE(at, std::string::npos);
        bytes.replace(at, key(i).size(), key(count - 1 - i));
        at += key(i).size();
    }
    EXPECT_TRUE(same(readBack(bytes), reversed));
}

TEST(ItemPackets, CutTextsAndKeysAtTheirFirstNul) {
    auto dictionary = make<Dictionary>();
    dictionary->insert(urString::CString("k\0x", 3), make<String>(urString::CString("v\0y", 3)));
    EXPECT_TRUE(same(readBack(bytesOf(dictionary)), dictionaryOf({{"k", make<String>("v")}})));
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

TEST(ItemPackets, RefuseATreeInsideItselfAndItemsOfNoKnownKind) {
    auto const inner = make<Dictionary>();
    auto const outer = arrayOf({make<Bool>(), inner});
    inner->insert("outer", outer);
    bytesOf(outer, number(ioStatus::cycle));
    inner->dictionary().clear();
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
        // The text after the digits, two spaces away, explains them.
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
        Reading const reading(bytes.substr(0, size));
        EXPECT_FALSE(reading.ok);
        EXPECT_EQ(reading.status, number(ioStatus::truncated)) << size;
        EXPECT_EQ(reading.position, size);
    }
    EXPECT_TRUE(same(Reading(bytes.substr(0, bytes.size() - 1)).item, sample())) << "the root was read whole";
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

/// Reading must end, and a success must give a tree.
void expectSoundReading(std::string const& bytes) {
    Reading const reading(bytes);
    bool const isTree = reading.ok && reading.item;
    EXPECT_TRUE(!isTree || reading.item->clone()->congruent(*reading.item));
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
    // Tokens that are valid in some place: packets, small and long numbers, texts, references, marks.
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

TEST(ItemPackets, ReserveNoRoomForASizeBeforeItsElementsArrive) {
    std::string const head = fileWith({"SimpleItem", "Array"}) + "\xA0\x81";
    for (char const* size : {"\x3F\xDF\xFF\xFF\xFF\x0F" /* 2^31 - 1 */, "\x21" /* -1 */}) {
        Reading const reading(head + size + "\xC0\xC0\xC0");
        EXPECT_FALSE(reading.ok);
        EXPECT_FALSE(reading.item);
    }
}

TEST(ItemPackets, GoAMillionLevelsDeepOnASmallStack) {
    ::test::onSmallStack(
        [] {
            Reference<Item> tree = make<Double>(1);
            for (int i = 0; i < 1000000; ++i)
                tree = i % 2 ? Reference<Item>(dictionaryOf({{"k", tree}})) : arrayOf({tree});
            auto const read = readBack(bytesOf(tree));
            EXPECT_TRUE(read->congruent(*tree));
        },
        ::test::leastStack);
}

TEST(ItemPackets, NestedWithoutReferencesAreRefusedBeforeTheStackOverflows) {
    std::string const bytes = fileWith({"Array"}) + std::string(1000000, '\x80');
    ::test::onSmallStack([&] { EXPECT_EQ(Reading(bytes).status, number(ioStatus::tooDeep)); }, ::test::leastStack);
}

/// The reading end of a pipe whose writer waits for an answer after its file.
class Pipe final : public urOS::IOStream {
public:
    explicit Pipe(std::string bytes) : bytes_(std::move(bytes)) {}
    urUtil::Error read(void* buffer, std::size_t /*count*/, std::size_t* done) override {
        EXPECT_LT(at_, bytes_.size()) << "the answer never comes";
        *done = bytes_.copy(static_cast<char*>(buffer), 1, at_);
        at_ += *done;
        return {};
    }
    urUtil::Error write(void const* /*buffer*/, std::size_t /*count*/, std::size_t* /*done*/) override { return {}; }

private:
    std::string bytes_;
    std::size_t at_ = 0;
};

TEST(ItemPackets, WaitForNoByteAfterTheirFile) {
    for (double const number : {1.0, 1000.0, 1e6, 0.5}) {
        Pipe pipe(bytesOf(arrayOf({make<Double>(number)})));
        Reference<Item> item;
        EXPECT_TRUE(read(pipe, item));
    }
}

TEST(ItemPackets, TellWhereAnItemBegins) {
    Reference<Item> const shared = arrayOf({make<String>("shared")});
    Reference<Item> const tree = dictionaryOf(
        {{"A", make<String>("names the type")},
         {"a", arrayOf({shared, nullptr, dictionaryOf({{"k", make<String>("first")}, {"l", make<String>("second")}}),
                        shared})},
         {"b", make<String>("third")}});
    std::string const file = bytesOf(tree);
    auto const position = [](std::string const& bytes, Path const& path) {
        ioTest::Trickle stream(bytes, 3);
        return packetPosition(stream, path);
    };
    struct Case {
        Path path;
        char const* text;
    };
    std::string const a = "a";
    for (auto const& [path, text] : {Case{{a, 2L, "k"}, "first"}, Case{{a, 2L, "l"}, "second"}, Case{{"b"}, "third"},
                                     Case{{a, 0L, 0L}, "shared"}}) {
        EXPECT_EQ(file.substr(position(file, path) + 2, std::strlen(text)), text)
            << "after the starts of packet and text";
    }
    EXPECT_GT(position(file, {a, 3L}), position(file, {a, 2L, "l"})) << "the reference";
    EXPECT_EQ(position(file, {a, 3L, 0L}), position(file, {a, 3L}));
    EXPECT_GT(position(file, {a, 9L}), position(file, {a, 3L})) << "the end of the array";
    for (std::size_t size = 0; size < file.size(); ++size) EXPECT_LE(position(file.substr(0, size), {"b"}), size);
}

TEST(ItemPackets, ReportAStreamThatFails) {
    urOS::MemoryIOStream closed;
    PacketReport report;
    EXPECT_FALSE(write(closed, make<Bool>(true), report));
    EXPECT_EQ(report.status, number(ioStatus::streamFailed));
    Reference<Item> const long64K = make<String>(urString::CString(65536, 'x'));
    EXPECT_FALSE(write(closed, arrayOf({arrayOf({arrayOf({long64K, long64K->clone()})})}), report));
    EXPECT_EQ(report.status, number(ioStatus::streamFailed));
    EXPECT_TRUE(report.error.isError());
    Reference<Item> item = make<Bool>(true);
    EXPECT_FALSE(read(closed, item, report));
    EXPECT_EQ(report.status, number(ioStatus::streamFailed));
    EXPECT_EQ(item, nullptr);
}

}  // namespace
