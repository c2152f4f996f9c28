// Tests the bytes of packet files and that they can be read back.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "foundation/io/tests/packetFiles.h"

namespace {

using namespace ioTest;

TEST(Packets, CarryEveryValueInItsShortestForm) {
    std::vector<int> const ints{0, -1, 15, 16, -4711, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
    using Limits = std::numeric_limits<double>;
    std::vector<double> const doubles{0.0,
                                      -0.0,
                                      -3.0,
                                      1e6,
                                      0.1,
                                      2147483647.0,
                                      -2147483648.0,
                                      2147483648.0,
                                      Limits::infinity(),
                                      Limits::quiet_NaN(),
                                      Limits::denorm_min()};
    std::vector<std::string> const texts{"", "thirty-one bytes are a long one", std::string(200000, 'x'),
                                         "caf\xC3\xA9"};
    std::string const bytes = written([&](ioWriteContext& context) {
        context.startPacket("a", nullptr);
        context.writeBoolValue(true);
        context.writeBoolValue(false);
        for (int value : ints) context.writeIntValue(value);
        for (double value : doubles) context.writeDoubleValue(value);
        for (auto const& value : texts) context.writeStringValue(value.c_str());
        context.writeTextValue(std::string_view("cut\0off", 7));
        context.endPacket();
    });
    for (std::size_t piece : {1, 7, 100000}) {
        Trickle stream(bytes, piece);
        Reader reader;
        reader.on("a", [&](ioReadContext& context) {
            EXPECT_TRUE(context.readBoolValue());
            EXPECT_FALSE(context.readBoolValue());
            for (int value : ints) EXPECT_EQ(context.readIntValue(), value);
            for (double value : doubles) {
                EXPECT_EQ(std::bit_cast<std::uint64_t>(context.readDoubleValue()), std::bit_cast<std::uint64_t>(value));
            }
            for (auto const& value : texts) EXPECT_EQ(context.readStringValue(), value);
            EXPECT_STREQ(context.readStringValue(), "cut");
        });
        EXPECT_EQ(reader.read(stream), 0) << piece;
    }
}

TEST(Packets, HaveTheBytesOfTheFormat) {
    int const object = 0;
    std::string const bytes = written([&](ioWriteContext& context) {
        context.startPacket("a", nullptr);
        context.writeIntValue(-2);
        context.startPacket("b", &object);
        context.writeDoubleValue(0.5);
        context.endReferredPacket();
        context.writeReferredPacket(context.typeId("b"), true);
        context.writeNameValue("key");
        context.writeReference(&object, 0);
        context.writeNameValue("key");
        context.writeReference(nullptr, 0);
        context.endPacket();
    });
    using namespace std::string_view_literals;
    EXPECT_EQ(bytes, file("\x05\x61\x61\xA0\x23"                                      // type a, packet, -2
                          "\x05\x61\x62\x81\x02\x00\x00\x00\x00\x00\x00\xE0\x3F\x04"  // type b, packet, 0.5, referred
                          "\xA1\x01\x04"                                              // packet, true, referred
                          "\xE0\x63key\xC1\xE1\xC0\x03\x06"sv));                      // names, references, ends
}

TEST(Packets, RememberShortNamesAndForgetTheOldest) {
    std::vector<std::string> names{"",         std::string(31, 'x'),  std::string(32, 'x'),
                                   "with NUL", "12345678-A-12345678", "12345678-B-12345678"};
    for (int i = 0; i < 600; ++i) names.push_back("name " + std::to_string(i % 300));
    // The two long names have equal ends, and come three times in turn: each is written once in three.
    for (int i = 0; i < 600; ++i) names.push_back(i % 2 ? names[4 + i / 6 % 2] : "name " + std::to_string(i % 20));
    std::string const bytes = written([&](ioWriteContext& context) {
        context.startPacket("a", nullptr);
        for (auto const& name : names)
            context.writeNameValue(name == "with NUL" ? std::string_view("with\0NUL", 8) : name);
        context.endPacket();
    });
    EXPECT_LT(bytes.size(), 600 * 10 + 300 * 2 + 300 * 8 + 300U);
    names[3] = "with";
    for (bool const isAsked : {true, false}) {  // skipped names are remembered as well
        Reader reader;
        reader.on("a", [&](ioReadContext& context) {
            for (std::size_t i = 0; isAsked && i < names.size(); ++i)
                ASSERT_EQ(context.readStringValue(), names[i]) << i;
        });
        EXPECT_EQ(reader.read(bytes), 0);
    }
}

TEST(Packets, ResolveReferencesToOneObjectAndFollowTheWritersQuestions) {
    std::vector<int> objects(1000);
    std::string const bytes = written([&](ioWriteContext& context) {
        EXPECT_FALSE(context.isReferenceDefined(&objects[0]));
        context.startPacket("a", nullptr);
        for (int& object : objects) {
            context.startPacket("b", &object);
            EXPECT_FALSE(context.isReferenceDefined(&object)) << "its packet is open";
            context.writeIntValue(static_cast<int>(&object - objects.data()));
            context.endPacket();
            EXPECT_TRUE(context.isReferenceDefined(&object));
        }
        for (int& object : objects) context.writeReference(&object, 0);
        context.writeReference(nullptr, 0);
        context.endPacket();
    });
    std::vector<int> read(objects.size());
    std::vector<void*> references;
    Reader reader;
    reader.on("a", [&](ioReadContext& context) {
        for (std::size_t i = 0; i < read.size(); ++i) references.push_back(context.readReference(0));
        EXPECT_EQ(context.referencedType()->name(), "b");
        EXPECT_EQ(context.readReference(0), nullptr);
        EXPECT_EQ(context.referencedType(), nullptr);
    });
    reader.on("b", [&](ioReadContext& context) { context.definePacketObject(&read[context.readIntValue()]); });
    EXPECT_EQ(reader.read(bytes), 0);
    EXPECT_EQ(reader.log, "<aa>");
    for (std::size_t i = 0; i < read.size(); ++i) EXPECT_EQ(references[i], &read[i]);
}

}  // namespace
