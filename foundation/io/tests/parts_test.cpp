// Tests buffers, registries and status texts.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "foundation/io/tests/packetFiles.h"

namespace {

using namespace ioTest;

TEST(Buffers, ReportTheirPositionAndEndWithTheirStream) {
    ioBufferedStreamInput input(leastInput);
    EXPECT_FALSE(input.isOpen());
    EXPECT_FALSE(input.ensure(1));
    Trickle stream(std::string(leastInput, 'a') + std::string(10, 'b'), 100);
    EXPECT_TRUE(input.openIOStream(stream).ok());
    EXPECT_TRUE(input.isOpen());
    EXPECT_TRUE(input.ensure(leastInput));
    EXPECT_EQ(input.available(), leastInput);
    input.advance(leastInput - 1);
    EXPECT_EQ(input.position(), leastInput - 1);
    EXPECT_TRUE(input.ensure(11));
    EXPECT_EQ(std::string_view(input.next(), 11), "abbbbbbbbbb");
    EXPECT_FALSE(input.ensure(12)) << "the stream has no more";
    EXPECT_EQ(input.available(), 11U);
    input.advance(1);
    input.abandon();
    EXPECT_EQ(input.position(), leastInput);
    EXPECT_FALSE(input.ensure(1));
    EXPECT_TRUE(input.close().ok());
    EXPECT_FALSE(input.isOpen());
    Trickle other("c", 1);
    EXPECT_TRUE(input.openIOStream(other).ok());
    EXPECT_TRUE(input.ensure(1));
    EXPECT_EQ(input.position(), 0U);
}

TEST(Buffers, WriteBytesInOrderAndKeepTheFirstError) {
    urOS::MemoryIOStream stream;
    ASSERT_TRUE(stream.open(urOS::openForWriting).ok());
    ioBufferedStreamOutput output(leastOutput);
    EXPECT_TRUE(output.close().ok());
    EXPECT_TRUE(output.openIOStream(stream).ok());
    std::string expected;
    for (std::size_t size : {std::size_t(1), leastOutput - 1, std::size_t(1), leastOutput, leastOutput + 1}) {
        output.write(std::string(size, static_cast<char>('a' + expected.size() % 26)));
        expected += std::string(size, static_cast<char>('a' + expected.size() % 26));
        EXPECT_EQ(output.position(), expected.size());
    }
    EXPECT_TRUE(output.flush().ok());
    EXPECT_EQ(stream.contents(), expected);
    char* const room = output.room(100);
    *room = 'z';
    output.moveTo(room + 1);
    EXPECT_EQ(output.spare(), leastOutput - 1);
    Trickle broken("", 1);
    EXPECT_TRUE(output.openIOStream(broken).ok()) << "the former stream got everything";
    EXPECT_EQ(stream.contents(), expected + "z");
    EXPECT_EQ(output.position(), 0U);
    output.write("x");
    EXPECT_EQ(output.openIOStream(stream).code(), 28) << "what the former stream said";
    EXPECT_TRUE(output.error().ok());
}

TEST(Registry, KeepsTheFirstTypeOfANameAndAsksForThemOnce) {
    for (bool const forReading : {true, false}) {
        ioSimplePacketRegistry registry(forReading);
        urRTB::SignalClient client;
        int asked = 0;
        registry.registrationSignal().addCallback(client, [&](ioSimplePacketRegistry& types) {
            ++asked;
            types.supportedType(std::make_unique<FunctionType>("a", nullptr));
            types.supportedType(std::make_unique<FunctionType>("a", nullptr));
            types.add("a");
            types.add("b");
        });
        EXPECT_FALSE(registry.supports("a"));
        registry.registerTypes();
        registry.registerTypes();
        EXPECT_EQ(asked, 1);
        for (char const* const name : {"a", "b", "c"}) EXPECT_EQ(registry.supports(name), *name != 'c');
        EXPECT_EQ(registry.reader("a") != nullptr, forReading);
        for (char const* const name : {"b", "c"}) EXPECT_EQ(registry.reader(name), nullptr);
    }
}

TEST(ReadContext, ReadsOneFileByCallbacksOfASimpleType) {
    struct Owner {
        ioReadContext* context;
        int value = 0;
        void read() { value = context->readIntValue(); }
    };
    Trickle stream(file("\x05\x61\x61\xA0\x22\x03\x06"), 1000);  // a packet of the number 1
    ioBufferedStreamInput input;
    static_cast<void>(input.openIOStream(stream));
    ioSimplePacketRegistry registry(true);
    auto const context = ioReadContextAlloc(input, registry);
    Owner owner{context.get()};
    registry.supportedType(
        std::make_unique<ioSimplePacketType>("a", std::make_unique<ioMemberReadCallback<Owner>>(owner, &Owner::read)));
    ioClientReadContext client(*context);
    context->readFile(client);
    EXPECT_EQ(context->getStatus(), 0);
    EXPECT_EQ(owner.value, 1);
    context->readFile(client);
    EXPECT_EQ(context->getStatus(), number(ioStatus::misuse)) << "a context reads one file";
}

TEST(Status, HasADistinctTextForEachState) {
    std::set<std::string> texts;
    for (int status = 0; status <= number(ioStatus::misuse); ++status) texts.insert(ioStatusText(status));
    EXPECT_EQ(texts.size(), 12U);
    EXPECT_EQ(std::string(ioStatusText(number(ioStatus::misuse))), "packet calls out of order");
    for (int unknown : {-1, 12}) EXPECT_EQ(std::string(ioStatusText(unknown)), "an unknown status");
}

}  // namespace
