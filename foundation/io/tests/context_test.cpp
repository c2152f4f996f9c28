// Tests the faults and positions that contexts report.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "foundation/io/tests/packetFiles.h"

namespace {

using namespace ioTest;

/// Makes a call for each letter.
void write(ioWriteContext& context, std::string_view calls) {
    static int const object = 0;
    for (char const call : calls) {
        if (call == 'z') context.startPacket("z", nullptr);
        if (call == 'a') context.startPacket("a", nullptr);
        if (call == 'o') context.startPacket("a", &object);
        if (call == '.') context.endPacket();
        if (call == '!') context.endReferredPacket();
        if (call == 'p') context.writeReferredPacket(context.typeId("a"), true);
        if (call == 'i') context.writeIntValue(1);
        if (call == 'n') context.writeNameValue("k");
        if (call == '0') context.writeReference(nullptr, 0);
        if (call == 'r') context.writeReference(&object, 0);
        if (call == 's') context.startFile();
    }
}

TEST(WriteContext, ReportsFaultsAndWritesNoEndMark) {
    std::pair<ioStatus, std::vector<char const*>> const cases[] = {
        {ioStatus::unknownType, {"z"}},
        {ioStatus::misuse, {"i", "n", "0", ".", "s", "p"}},  // outside packets
        {ioStatus::misuse, {"a!", "a", "o.o"}},              // no enclosing packet, one left open, one object twice
        {ioStatus::unresolvedReference, {"ar", "or"}},       // without its packet, inside its packet
        {ioStatus::cycle, {"oao"}},
    };
    for (auto const& [status, texts] : cases) {
        for (char const* const calls : texts) {
            SCOPED_TRACE(calls);
            std::string const bytes = written([&](auto& context) { write(context, calls); }, number(status));
            EXPECT_EQ(Reader().read(bytes), number(ioStatus::truncated));
        }
    }
    written([](auto& c) { EXPECT_EQ(c.firstByteOf(c.typeId("z")), 0); }, number(ioStatus::unknownType));
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
