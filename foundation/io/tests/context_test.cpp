// Contexts over streams: what they report and where.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/io/tests/packetFiles.h"

namespace {

using namespace ioTest;

TEST(WriteContext, SaysWhatWasWrongAndWritesNoEndMark) {
    int const object = 0;
    struct Case {
        ioStatus status;
        Writing write;
    };
    Case const cases[] = {
        {ioStatus::unknownType, [](auto& c) { c.startPacket("z", nullptr); }},
        {ioStatus::unknownType, [](auto& c) { EXPECT_EQ(c.firstByteOf(c.typeId("z")), 0); }},
        {ioStatus::misuse, [](auto& c) { c.writeIntValue(1); }},
        {ioStatus::misuse, [](auto& c) { c.endPacket(); }},
        {ioStatus::misuse, [](auto& c) { c.startFile(); }},
        {ioStatus::misuse, [](auto& c) { c.startPacket("a", nullptr); }},  // left open
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
}

TEST(Contexts, KeepWorkingWhenPacketsEndWhereTheBufferEnds) {
    // Objects of one byte less or more each time, so that an end meets every place around the buffer's end.
    std::vector<int> objects(3000);
    for (std::size_t shift = 0; shift < 8; ++shift) {
        std::string const bytes = written([&](ioWriteContext& context) {
            context.startPacket("a", nullptr);
            context.writeStringValue(std::string(65480 + shift, 'x').c_str());
            for (int& object : objects) {
                context.startPacket("b", &object);
                context.endPacket();
                context.writeReference(&object, 0);
            }
            context.endPacket();
        });
        int read = 0;
        Reader reader;
        reader.on("a", [&](ioReadContext& context) {
            static_cast<void>(context.readStringValue());
            for (std::size_t i = 0; i < objects.size(); ++i) read += context.readReference(0) == &objects[i];
        });
        int next = 0;
        reader.on("b", [&](ioReadContext& context) { context.definePacketObject(&objects[next++]); });
        EXPECT_EQ(reader.read(bytes), 0);
        EXPECT_EQ(read, 3000);
    }
}

}  // namespace
