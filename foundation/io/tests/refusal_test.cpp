// Tests malformed, unknown and deeply nested packets.
#include <gtest/gtest.h>

#include <string>

#include "foundation/io/tests/packetFiles.h"

namespace {

using namespace ioTest;

TEST(Packets, OfUnknownTypesAndValuesThatNobodyAsksForArePassedOver) {
    int const object = 0;
    std::string const bytes = written([&](ioWriteContext& context) {
        context.startPacket("c", nullptr);  // unknown to the reader; contains a known packet
        context.writeStringValue(std::string(100000, 'x').c_str());
        context.startPacket("c", nullptr);
        context.startPacket("b", &object);
        context.writeIntValue(7);
        context.writeDoubleValue(0.25);  // the reader does not ask for it
        context.endPacket();
        context.writeReference(&object, 0);
        context.endPacket();
        context.writeBoolValue(true);
        context.endPacket();
        context.startPacket("a", nullptr);
        context.writeReference(&object, 0);
        context.endPacket();
    });
    int value = 0;
    Reader reader;
    reader.on("a", [&](ioReadContext& context) { EXPECT_EQ(context.readReference(0), &value); });
    reader.on("b", [&](ioReadContext& context) {
        value = context.readIntValue();
        context.definePacketObject(&value);
    });
    EXPECT_EQ(reader.read(bytes), 0);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(reader.log, "<aa>");
}

TEST(Packets, CutAnywhereDeliverTheRestAndFailAtTheCut) {
    static std::string const longest(ioFormat::longestTypeName, 'n');
    auto const write = [](ioWriteContext& context) {
        context.startPacket(longest.c_str(), nullptr);
        context.writeDoubleValue(0.25);
        context.writeIntValue(100000);
        context.writeTextValue("text");
        context.writeTextValue(std::string(300, '\7'));  // unread values are skipped, these as one
        context.writeBoolValue(true);
        context.endPacket();
    };
    std::string const whole = written(write, 0, [](ioSimplePacketRegistry& types) { types.add(longest.c_str()); });
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        bool const isCut = size < whole.size();
        Reader knowing, ignorant;
        knowing.on(longest.c_str(), [&](ioReadContext& context) {
            bool isWhole = context.readDoubleValue() == 0.25;
            isWhole = context.readIntValue() == 100000 && isWhole;
            isWhole = context.readTextValue() == "text" && isWhole;
            EXPECT_EQ(isWhole, context.getStatus() == 0) << size;
            EXPECT_EQ(isWhole ? 0 : context.readIntValue(), 0);
        });
        for (Reader* const reader : {&knowing, &ignorant}) {
            Trickle stream(whole.substr(0, size), 1);
            EXPECT_EQ(reader->read(stream), isCut ? number(ioStatus::truncated) : 0) << size;
            EXPECT_EQ(reader->position, isCut ? size : 0);
        }
    }
}

TEST(Packets, RefuseMalformedInput) {
    using namespace std::string_view_literals;
    struct Case {
        std::string bytes;
        ioStatus status;
        std::uint64_t position;
    };
    std::string const a = "\x05\x61\x61\xA0";  // type a, a packet of it
    Case const cases[] = {
        {"", ioStatus::truncated, 0},
        {"{\"a\":1}", ioStatus::notAPacketFile, 0},
        {"\x89NXPK\r\n\2", ioStatus::unknownVersion, 7},
        {file(a), ioStatus::truncated, 12},
        {file(a + "\x20\x03"), ioStatus::truncated, 14},                        // no end mark
        {file(a + "\x20\x02" + std::string(7, 'x')), ioStatus::truncated, 21},  // a double of seven bytes
        {file("\x05\x7F\xE0\x01" + std::string(255, 'n') + "\xA0\x03\x06"), ioStatus::ok, 0},
        {file("\x05\x7F\xE1\x01" + std::string(256, 'n') + "\xA0\x03\x06"), ioStatus::malformed, 12},
        {file("\xA0\x03\x06"), ioStatus::malformed, 9},                // a type without a name
        {file("\x05\x60\xA0\x03\x06"), ioStatus::malformed, 10},       // a name without letters
        {file("\x05\x61\x61\x20\x06"), ioStatus::malformed, 11},       // a name without a packet
        {file("\x20\x06"), ioStatus::malformed, 8},                    // a value outside packets
        {file(a + "\x20\x04\x06"), ioStatus::malformed, 14},           // a reference outside packets
        {file(a + "\x01\x03\x06"), ioStatus::malformed, 12},           // a boolean instead of a number
        {file(a + "\x03\x06"), ioStatus::malformed, 12},               // no number
        {file(a + "\x20\xE1\x61k\x03\x06"), ioStatus::malformed, 14},  // an unknown name
        {file(a + "\x20\xE0\x7F\x01" + std::string(32, 'x')), ioStatus::malformed, 16},  // a name that is too long
        {file(a + "\x20\x07\x03\x06"), ioStatus::malformed, 13},                         // an unknown mark
        {file(a + "\x3F\xFF\xFF\xFF\xFF\x7F\x03\x06"), ioStatus::malformed, 18},         // a number beyond 32 bits
        {file(a + "\x3F\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x02\x03\x06"), ioStatus::malformed, 12},
        {file(a + "\x3F" + std::string(100, '\xFF')), ioStatus::malformed, 12},
        {file(a + "\x3F" + std::string(5, '\xFF')), ioStatus::truncated, 18},
    };
    for (Case const& c : cases) {
        Reader reader;
        reader.on("a", [](ioReadContext& context) {
            int const value = context.readIntValue();
            EXPECT_TRUE(context.getStatus() == 0 || value == 0);
        });
        EXPECT_EQ(reader.read(c.bytes), number(c.status)) << testing::PrintToString(c.bytes);
        EXPECT_EQ(reader.position, c.position) << testing::PrintToString(c.bytes);
    }
}

TEST(Packets, GiveNothingAfterAFault) {
    std::string const bytes = file("\x05\x61\x61\xA0\x22\x22\x22\x22\x03\x06");  // a packet of four integers
    Reader reader;
    reader.on("a", [](ioReadContext& context) {
        EXPECT_EQ(context.readIntValue(), 1);
        EXPECT_FALSE(context.readBoolValue());
        for (int again = 0; again < 2; ++again) {
            EXPECT_EQ(context.readIntValue(), 0);
            EXPECT_EQ(context.readDoubleValue(), 0);
            EXPECT_EQ(context.readTextValue(), "");
            EXPECT_EQ(context.readReference(0), nullptr);
            EXPECT_FALSE(context.readBoolValue());
        }
    });
    EXPECT_EQ(reader.read(bytes), number(ioStatus::malformed));
    EXPECT_EQ(reader.position, 13U);
}

TEST(Packets, RefuseReferencesToMissingObjects) {
    using namespace std::string_literals;
    for (std::string const& tokens : {
             "\xC1\x03\x06"s,                  // before any object
             "\xDF\xFF\x7F\x03\x06"s,          // far before any object
             "\x81\xC1\x03\x03\x06"s,          // the object whose packet is open
             "\x81\x03\xC1\x03\x06"s,          // one that its packet does not define
             "\x81\x04\x03\x06"s,              // the same in the short form
             "\x05\x61\x63\x82\x04\x03\x06"s,  // the object of an unknown packet
         }) {
        // Type b reads a reference if the tokens contain one; it defines no object.
        Reader reader;
        reader.on("a", [](ioReadContext& context) { EXPECT_EQ(context.readReference(0), nullptr); });
        reader.on("b", [&](ioReadContext& context) {
            bool const refers = tokens[1] == '\xC1';
            EXPECT_TRUE(!refers || context.readReference(0) == nullptr);
        });
        std::string const bytes = file("\x05\x61\x61\x05\x61\x62\xA0" + tokens);  // types a and b, a packet of a
        EXPECT_EQ(reader.read(bytes), number(ioStatus::unresolvedReference)) << testing::PrintToString(tokens);
    }
}

TEST(Packets, NestOnlyToTheLimitUnlessTheirTypeIsUnknown) {
    auto const nested = [](std::size_t depth) {
        return file("\x05\x61\x61" + std::string(depth, '\xA0') + "\x22" + std::string(depth, '\3') + "\6");
    };
    auto const read = [](std::string const& bytes) {
        return Reader().on("a", [](auto& context) { static_cast<void>(context.readIntValue()); }).read(bytes);
    };
    // The innermost packet has a number and the enclosing ones lack one, so only the depth decides the status.
    EXPECT_EQ(read(nested(ioReadContext::deepestRead)), number(ioStatus::malformed));
    EXPECT_EQ(read(nested(ioReadContext::deepestRead + 1)), number(ioStatus::tooDeep));
    EXPECT_EQ(Reader().read(nested(1000000)), 0);
}

TEST(Packets, TypesMayForgetTheirObjectsOrStillWaitForOthers) {
    int object = 0;
    std::string const bytes = written([&](ioWriteContext& context) {
        context.startPacket("a", nullptr);
        context.startPacket("b", &object);
        context.endPacket();
        context.writeReference(nullptr, 0);
        context.writeReference(&object, 0);
        context.endPacket();
    });
    auto const status = [&](bool forgets, bool waits) {
        Reader reader;
        reader.on("a", [](ioReadContext& context) {
            static_cast<void>(context.readReference(0));
            static_cast<void>(context.readReference(0));
        });
        reader.on("b", [&](ioReadContext& context) { context.definePacketObject(&object); });
        reader.last().forgets = forgets;
        reader.last().waits = waits;
        return reader.read(bytes);
    };
    EXPECT_EQ(status(false, false), 0);
    EXPECT_EQ(status(true, false), number(ioStatus::unresolvedReference));
    EXPECT_EQ(status(false, true), number(ioStatus::unresolvedReference));
}

}  // namespace
