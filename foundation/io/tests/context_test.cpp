// Tests the faults and positions that contexts report.
#include <gtest/gtest.h>

#include <string>

#include "foundation/io/tests/packetFiles.h"

namespace {

using namespace ioTest;

TEST(WriteContext, ReportsFaultsAndWritesNoEndMark) {
    int const object = 0;
    struct Case {
        ioStatus status;
        Writing write;
    };
    Case const cases[] = {
        {ioStatus::unknownType, [](auto& c) { c.startPacket("z", nullptr); }},
        {ioStatus::unknownType, [](auto& c) { EXPECT_EQ(c.firstByteOf(c.typeId("z")), 0); }},
        {ioStatus::misuse, [](auto& c) { c.writeIntValue(1); }},
        {ioStatus::misuse, [](auto& c) { c.writeNameValue("k"); }},
        {ioStatus::misuse, [](auto& c) { c.writeReference(nullptr, 0); }},
        {ioStatus::misuse, [](auto& c) { c.endPacket(); }},
        {ioStatus::misuse, [](auto& c) { c.startFile(); }},
        {ioStatus::misuse, [](auto& c) { c.writeReferredPacket(c.typeId("a"), true); }},
        {ioStatus::misuse,
         [](auto& c) {
             c.startPacket("a", nullptr);
             c.endReferredPacket();  // no enclosing packet
         }},
        {ioStatus::misuse, [](auto& c) { c.startPacket("a", nullptr); }},  // a packet is left open
        {ioStatus::unresolvedReference,
         [&](auto& c) {
             c.startPacket("a", nullptr);
             c.writeReference(&object, 0);
         }},
        {ioStatus::unresolvedReference,
         [&](auto& c) {
             c.startPacket("a", &object);
             c.writeReference(&object, 0);
         }},
        {ioStatus::cycle,
         [&](auto& c) {
             c.startPacket("a", &object);
             c.startPacket("b", nullptr);
             c.startPacket("a", &object);
         }},
        {ioStatus::misuse,
         [&](auto& c) {
             c.startPacket("a", &object);
             c.endPacket();
             c.startPacket("a", &object);
         }},
    };
    for (Case const& c : cases) {
        std::string const bytes = written(c.write, number(c.status));
        EXPECT_EQ(Reader().read(bytes), number(ioStatus::truncated)) << ioStatusText(number(c.status));
    }
}

TEST(Contexts, AreMadeOnlyForOpenStreamsAndReportTheirFailures) {
    ioSimplePacketRegistry registry(true);
    ioBufferedStreamOutput output;
    ioBufferedStreamInput input;
    EXPECT_EQ(ioWriteContextAlloc(output, 1, registry), nullptr);
    EXPECT_EQ(ioReadContextAlloc(input, registry), nullptr);

    Trickle stream(file(""), 3, true);
    EXPECT_EQ(Reader().read(stream), number(ioStatus::streamFailed));
    static_cast<void>(output.openIOStream(stream));
    EXPECT_EQ(ioWriteContextAlloc(output, 2, registry), nullptr);
    auto const context = ioWriteContextAlloc(output, 1, registry);
    context->startFile();
    context->endFile();
    EXPECT_EQ(context->getStatus(), 0);
    EXPECT_EQ(output.flush().code(), 28);
    EXPECT_EQ(context->getStatus(), number(ioStatus::streamFailed));
    EXPECT_EQ(output.close().code(), 28);

    static_cast<void>(input.openIOStream(stream));
    auto const reading = ioReadContextAlloc(input, registry);
    reading->definePacketObject(&stream);  // outside packets
    EXPECT_FALSE(reading->packetIsNumbered());
}

}  // namespace
