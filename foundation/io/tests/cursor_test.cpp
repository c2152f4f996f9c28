// Tests that cursors write and read rows of small packets as the contexts do.
#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <numeric>
#include <string>
#include <vector>

#include "foundation/io/tests/packetFiles.h"

namespace {

using namespace ioTest;
using namespace std::string_view_literals;

std::vector<double> const numbers{0.0, -0.0, 15, 16, -17, 0.5, 1e6, 2147483647.0, -2147483648.0, 2147483648.0};

std::string nameOf(std::size_t i) { return std::string(i % 31, static_cast<char>('a' + i % 7)); }
double numberOf(std::size_t i) { return numbers[i % numbers.size()]; }
std::string textOf(std::size_t i) { return std::string(i % 31, 'x'); }
constexpr std::size_t entries = 300;

void writePlainly(ioWriteContext& context, ioPacketTypeId type, std::size_t i) {
    context.writeNameValue(nameOf(i));
    context.startNewPacket(type, nullptr);
    context.writeIntValue(static_cast<int>(i));
    context.writeReferredPacket(type, numberOf(i));
    context.writeReferredPacket(type, i % 2 == 0);
    context.writeReferredPacket(type, std::string_view(textOf(i)));
    context.endReferredPacket();
}

/// False without room.
bool writeInRow(ioWriteContext& context, unsigned char first, std::size_t i) {
    ioWriteContext::Cursor cursor(context);
    if (!cursor.hasRoom()) return false;
    cursor.name(nameOf(i));
    cursor.enter(first, static_cast<int>(i));
    EXPECT_TRUE(cursor.hasRoom()) << "this test's buffer always has room";
    cursor.packet(first, numberOf(i));
    EXPECT_TRUE(cursor.hasRoom());
    cursor.packet(first, i % 2 == 0);
    EXPECT_TRUE(cursor.hasRoom());
    cursor.packet(first, std::string_view(textOf(i)));
    cursor.leave();
    return true;
}

std::string packetRows(bool areQuick, std::size_t buffer = leastOutput) {
    auto const write = [&](ioWriteContext& context) {
        context.startPacket("a", nullptr);
        ioPacketTypeId const type = context.typeId("b");
        EXPECT_EQ(context.firstByteOf(type), 0) << "the file has not named it";
        EXPECT_EQ(context.firstByteOf(ioPacketTypeId::none), 0);
        writePlainly(context, type, 0);
        unsigned char const first = context.firstByteOf(type);
        EXPECT_EQ(first, 0xA1);
        std::size_t inRows = 0;
        for (std::size_t i = 1; i < entries; ++i) {
            bool const isQuick = areQuick && writeInRow(context, first, i);
            if (!isQuick) writePlainly(context, type, i);
            inRows += isQuick;
        }
        EXPECT_EQ(inRows > 0, areQuick);
        context.endPacket();
    };
    return written(write, 0, addTypes, buffer);
}

TEST(Cursors, WriteTheBytesThatTheContextWritesOrNothing) {
    constexpr std::size_t large = 64 * 1024;
    std::string const rows = packetRows(true, large);
    for (std::size_t extra = 0; extra < 40; ++extra) EXPECT_EQ(packetRows(false, leastOutput + extra), rows);
    auto const writeOutside = [](ioWriteContext& context) {
        EXPECT_FALSE(ioWriteContext::Cursor(context).hasRoom()) << "no packet is open";
        context.endPacket();
    };
    written(writeOutside, number(ioStatus::misuse), addTypes, large);
}

TEST(Cursors, ReadWhatTheContextReads) {
    constexpr std::size_t whole = 64 * 1024;
    std::vector<std::size_t> extras(40);
    std::iota(extras.begin(), extras.end(), 0);
    extras.push_back(whole);
    for (std::size_t const extra : extras) {
        std::map<char, int> quick;  // what cursors read, and how often
        Reader reader;
        reader.buffer = leastInput + extra;
        reader.on("a", [&](ioReadContext& context) {
            auto const byCursor = [&](char what, auto read) {
                ioReadContext::Cursor cursor(context);
                bool const isRead = read(cursor);
                quick[what] += isRead;
                return isRead;
            };
            auto const close = [&] { ASSERT_EQ(context.closePacket(), ioReadContext::Ending::referred); };
            auto const expectPacket = [&](char what, auto expected, auto slowly) {
                decltype(expected) value{};
                bool const isQuick = byCursor(what, [&](auto& cursor) { return cursor.packet(value); });
                if (!isQuick) {
                    ASSERT_TRUE(context.openPacket());
                    value = (context.*slowly)();
                }
                ASSERT_EQ(value, expected);
                if constexpr (std::is_same_v<decltype(value), double>) {
                    ASSERT_EQ(1 / value, 1 / expected) << "the sign";
                }
                if (!isQuick) close();
            };
            for (std::size_t i = 0; i < entries; ++i) {
                std::string_view name;
                if (!byCursor('n', [&](auto& cursor) { return cursor.name(name); })) name = context.readTextValue();
                ASSERT_EQ(name, nameOf(i));
                std::size_t size = 0;
                if (!byCursor('e', [&](auto& cursor) { return cursor.first() == 0xA1 && cursor.enter(size); })) {
                    ASSERT_TRUE(context.openPacket());
                    size = static_cast<std::size_t>(context.readIntValue());
                }
                ASSERT_EQ(size, i);
                std::string const text = textOf(i);
                expectPacket('d', numberOf(i), &ioReadContext::readDoubleValue);
                expectPacket('b', i % 2 == 0, &ioReadContext::readBoolValue);
                expectPacket('t', std::string_view(text), &ioReadContext::readTextValue);
                if (!byCursor('l', [&](auto& cursor) { return cursor.leave(); })) close();
            }
        });
        reader.on("b", [](ioReadContext&) { FAIL() << "its packets are opened here"; });
        EXPECT_EQ(reader.read(packetRows(false)), 0);
        for (char const what : "nedbtl"sv) EXPECT_GT(quick[what], 0) << what;
        for (char const what : "db"sv) EXPECT_GT(quick[what], extra == whole ? 290 : 0) << what;
    }
}

TEST(Cursors, LeaveUnusualTokensToTheContext) {
    struct Case {
        std::string_view bytes;
        char what;  // name, bool, double, text, enter, leave
    };
    Case const cases[] = {
        {"\xE0\x61k"sv, 'n'},                                     // named, not named before
        {"\xE3"sv, 'n'},                                          // not named
        {"\xFF\x80\x01"sv, 'n'},                                  // the number is too long
        {"\x61k"sv, 'n'},                                         // a text
        {"\xA1\x02\x04"sv, 'b'},                                  // not a truth value
        {"\xA1\x01\x03"sv, 'b'},                                  // not a reference
        {"\xA1\x20\x04"sv, 'd'},                                  // an integer
        {"\xA1\x5F\xE1\xFF\xFF\xFF\x0F\x04"sv, 'd'},              // beyond 32 bits
        {"\xA1\x42\x03"sv, 'd'},                                  // not a reference
        {"\xA1\x02\x00\x00\x00\x00\x00\x00\xE0\x3F\x03"sv, 'd'},  // not a reference
        {"\xA1\x62x\x00\x04"sv, 't'},                             // a NUL
        {"\xA1\x61x\x03"sv, 't'},                                 // not a reference
        {"\xA1\x7F\xFF\x7Fx"sv, 't'},                             // longer than the input
        {"\xA1\x22"sv, 't'},                                      // not a text
        {"\xA1\x21\x04"sv, 'e'},                                  // a negative size
        {"\xA1\x3F\x01\x04"sv, 'e'},                              // a long number
        {"\xA1\x42\x04"sv, 'e'},                                  // not an integer
        {"\x04"sv, 'l'},                                          // the outermost packet
    };
    for (Case const& c : cases) {
        Reader reader;
        reader.on("a", [&](ioReadContext& context) {
            EXPECT_EQ(context.readTextValue(), "first");
            ioReadContext::Cursor cursor(context);
            std::string_view text;
            bool truth = false;
            double value = 0;
            std::size_t size = 0;
            unsigned char const first = cursor.first();
            switch (c.what) {
                case 'n': EXPECT_FALSE(cursor.name(text)); break;
                case 'b': EXPECT_FALSE(cursor.packet(truth)); break;
                case 'd': EXPECT_FALSE(cursor.packet(value)); break;
                case 't': EXPECT_FALSE(cursor.packet(text)); break;
                case 'e': EXPECT_FALSE(cursor.enter(size)); break;
                default: EXPECT_FALSE(cursor.leave());
            }
            EXPECT_EQ(cursor.first(), first);
            EXPECT_EQ(first, static_cast<unsigned char>(c.bytes[0]));
        });
        static_cast<void>(
            reader.read(file("\x05\x61\x61\x05\x61\x62\xA0\xE0\x65"
                             "first" +
                             std::string(c.bytes) + std::string(20, '\x20'))));
    }
}

}  // namespace
