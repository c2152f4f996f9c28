// Packets written and read through the contexts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/io/ioClientReadContext.h"
#include "foundation/io/ioClientWriteContext.h"
#include "foundation/io/ioReadContext.h"
#include "foundation/io/ioSimplePacketRegistry.h"
#include "foundation/io/ioWriteContext.h"
#include "foundation/urOS/MemoryIOStream.h"

namespace {

using testing::ElementsAre;

using Writing = std::function<void(ioWriteContext&)>;
using Reading = std::function<void(ioReadContext&)>;

int number(ioStatus status) { return static_cast<int>(status); }

/// The bytes that `write` makes between the start and the end of a file; types "a", "b" and "c" are known.
std::string written(Writing const& write, int expectedStatus = 0) {
    urOS::MemoryIOStream stream(100);
    static_cast<void>(stream.open(urOS::openForWriting));
    ioBufferedStreamOutput output;
    static_cast<void>(output.openIOStream(stream));
    ioSimplePacketRegistry registry(false);
    urRTB::SignalClient client;
    registry.registrationSignal().addCallback(client, [](ioSimplePacketRegistry& types) {
        for (char const* name : {"a", "b", "c"}) types.add(name);
    });
    auto const context = ioWriteContextAlloc(output, 1, registry);
    context->startFile();
    write(*context);
    context->endFile();
    EXPECT_EQ(context->getStatus(), expectedStatus);
    EXPECT_TRUE(output.close().ok());
    return std::string(stream.contents());
}

/// A packet type that leaves reading to a function.
class FunctionType final : public ioPacketType {
public:
    FunctionType(char const* name, Reading read) : ioPacketType(name), read_(std::move(read)) {}
    void read(ioClientReadContext& client) override { read_(client.context()); }
    [[nodiscard]] bool memoryNotReferenced() const override { return forgets; }
    [[nodiscard]] bool hasUnresolvedPointer() const override { return waits; }

    bool forgets = false;
    bool waits = false;

private:
    Reading read_;
};

/// Hands its bytes out in pieces of `piece` bytes, then fails if asked to.
class Trickle final : public urOS::IOStream {
public:
    Trickle(std::string bytes, std::size_t piece, bool fails = false)
        : bytes_(std::move(bytes)), piece_(piece), fails_(fails) {}
    urUtil::Error read(void* buffer, std::size_t count, std::size_t* done) override {
        *done = std::min({count, piece_, bytes_.size() - at_});
        bytes_.copy(static_cast<char*>(buffer), *done, at_);
        at_ += *done;
        return fails_ && at_ == bytes_.size() ? urUtil::Error(5, "unplugged") : urUtil::Error();
    }
    urUtil::Error write(void const* /*buffer*/, std::size_t /*count*/, std::size_t* /*done*/) override {
        return {28, "full"};
    }

private:
    std::string bytes_;
    std::size_t piece_;
    bool fails_;
    std::size_t at_ = 0;
};

class Client final : public ioClientReadContext {
public:
    using ioClientReadContext::ioClientReadContext;
    void prePacketRead(ioPacketType const& type) override { log += "<" + type.name(); }
    void postPacketRead(ioPacketType const& type) override { log += type.name() + ">"; }
    std::string log;
};

/// Reads a stream with the given types and answers the status.
class Reader {
public:
    Reader& on(char const* name, Reading read) {
        types_.push_back(std::make_unique<FunctionType>(name, std::move(read)));
        return *this;
    }
    FunctionType& last() { return *types_.back(); }

    int read(std::string const& bytes) {
        Trickle stream(bytes, 1000);
        return read(stream);
    }
    int read(urOS::IOStream& stream) {
        ioBufferedStreamInput input;
        static_cast<void>(input.openIOStream(stream));
        ioSimplePacketRegistry registry(true);
        for (auto& type : types_) registry.supportedType(std::move(type));
        auto const context = ioReadContextAlloc(input, registry);
        Client client(*context);
        context->readFile(client);
        log = client.log;
        position = context->getStatusPosition();
        return context->getStatus();
    }

    std::string log;
    std::uint64_t position = 0;

private:
    std::vector<std::unique_ptr<FunctionType>> types_;
};

std::string file(std::string_view tokens) { return std::string(ioFormat::fileMark) + '\1' + std::string(tokens); }

TEST(Packets, CarryEveryValueInItsShortestForm) {
    std::vector<int> const ints{0, -1, 15, 16, -4711, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
    std::vector<double> const doubles{0.0,
                                      -0.0,
                                      -3.0,
                                      1e6,
                                      0.1,
                                      2147483647.0,
                                      -2147483648.0,
                                      2147483648.0,
                                      std::numeric_limits<double>::infinity(),
                                      std::numeric_limits<double>::quiet_NaN(),
                                      std::numeric_limits<double>::denorm_min()};
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

TEST(Packets, AreTheBytesThatTheFormatSays) {
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
    std::vector<std::string> names{"", std::string(31, 'x'), std::string(32, 'x'), "with NUL"};
    for (int i = 0; i < 600; ++i) names.push_back("name " + std::to_string(i % 300));
    for (int i = 0; i < 600; ++i) names.push_back("name " + std::to_string(i % 20));
    std::string const bytes = written([&](ioWriteContext& context) {
        context.startPacket("a", nullptr);
        for (auto const& name : names)
            context.writeNameValue(name == "with NUL" ? std::string_view("with\0NUL", 8) : name);
        context.endPacket();
    });
    EXPECT_LT(bytes.size(), 600 * 10 + 600 * 2 + 300U);
    names[3] = "with";
    for (bool const isAsked : {true, false}) {  // names that are passed over are remembered as well
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
        context.endPacket();
    });
    std::vector<int> read(objects.size());
    std::vector<void*> references;
    Reader reader;
    reader.on("a", [&](ioReadContext& context) {
        for (std::size_t i = 0; i < read.size(); ++i) references.push_back(context.readReference(0));
        EXPECT_EQ(context.referencedType()->name(), "b");
    });
    reader.on("b", [&](ioReadContext& context) { context.definePacketObject(&read[context.readIntValue()]); });
    EXPECT_EQ(reader.read(bytes), 0);
    EXPECT_EQ(reader.log, "<aa>");
    for (std::size_t i = 0; i < read.size(); ++i) EXPECT_EQ(references[i], &read[i]);
}

TEST(Packets, OfUnknownTypesAndValuesThatNobodyAsksForArePassedOver) {
    int const object = 0;
    std::string const bytes = written([&](ioWriteContext& context) {
        context.startPacket("c", nullptr);  // unknown to the reader, with a known one inside
        context.writeStringValue(std::string(100000, 'x').c_str());
        context.startPacket("c", nullptr);
        context.startPacket("b", &object);
        context.writeIntValue(7);
        context.writeDoubleValue(0.25);  // more than the reader asks for
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

TEST(Packets, RefuseWhatMakesNoSense) {
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
        {file(a + "\x20\x03"), ioStatus::truncated, 14},          // no end of file
        {file("\xA0\x03\x06"), ioStatus::malformed, 9},           // a type that was not named
        {file("\x05\x60\xA0\x03\x06"), ioStatus::malformed, 10},  // a name without letters
        {file("\x05\x61\x61\x20\x06"), ioStatus::malformed, 11},  // a name without a packet
        {file("\x20\x06"), ioStatus::malformed, 8},               // a value outside packets
        {file(a + "\x20\x04\x06"), ioStatus::malformed, 14},      // a reference outside packets
        {file(a + "\x01\x03\x06"), ioStatus::malformed, 12},      // a truth value instead of a number
        {file(a + "\x03\x06"), ioStatus::malformed, 12},          // no number at all
        {file(a + "\x20\xE1\x03\x06"), ioStatus::malformed, 14},  // a name that was not given
        {file(a + "\x20\xE0\x7F\x01" + std::string(32, 'x')), ioStatus::malformed, 16},  // one that is too long
        {file(a + "\x20\x07\x03\x06"), ioStatus::malformed, 13},                         // a mark without a meaning
        {file(a + "\x3F\xFF\xFF\xFF\xFF\x7F\x03\x06"), ioStatus::malformed, 18},         // a number beyond 32 bits
        {file(a + "\x3F\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x02\x03\x06"), ioStatus::malformed, 13},
        {file(a + "\x3F" + std::string(100, '\xFF')), ioStatus::malformed, 13},
        {file(a + "\x3F" + std::string(5, '\xFF')), ioStatus::truncated, 18},
    };
    for (Case const& c : cases) {
        Reader reader;
        reader.on("a", [](ioReadContext& context) {
            static_cast<void>(context.readIntValue());
            EXPECT_TRUE(context.getStatus() == 0 || context.readIntValue() == 0);
        });
        EXPECT_EQ(reader.read(c.bytes), number(c.status)) << testing::PrintToString(c.bytes);
        EXPECT_EQ(reader.position, c.position) << testing::PrintToString(c.bytes);
    }
}

TEST(Packets, RefuseReferencesToWhatIsNotThere) {
    using namespace std::string_literals;
    for (std::string const& tokens : {
             "\xC1\x03\x06"s,                  // before any object
             "\xDF\xFF\x7F\x03\x06"s,          // far before any object
             "\x81\xC1\x03\x03\x06"s,          // the object whose packet is open
             "\x81\x03\xC1\x03\x06"s,          // one that its packet did not define
             "\x81\x04\x03\x06"s,              // the same in short
             "\x05\x61\x63\x82\x04\x03\x06"s,  // the object of an unknown packet
         }) {
        // Type b refers to an object itself if there is a reference inside, and defines none.
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

TEST(Packets, ReadInsideEachOtherOnlySoDeep) {
    for (int const depth : {ioReadContext::deepestRead, ioReadContext::deepestRead + 1}) {
        std::string const bytes = written([&](ioWriteContext& context) {
            for (int i = 0; i < depth; ++i) context.startPacket("a", nullptr);
            context.writeIntValue(1);
            for (int i = 0; i < depth; ++i) context.endPacket();
        });
        Reader reader;
        reader.on("a", [](ioReadContext& context) { static_cast<void>(context.readIntValue()); });
        // The innermost has a number, so each packet around it lacks one: only the depth decides what is said.
        bool const tooDeep = depth > ioReadContext::deepestRead;
        EXPECT_EQ(reader.read(bytes), number(tooDeep ? ioStatus::tooDeep : ioStatus::malformed));
    }
}

TEST(Packets, OfUnknownTypesNestWithoutLimit) {
    std::string const bytes = file("\x05\x61\x7A" + std::string(1000000, '\xA0') + std::string(1000000, '\3') + "\6");
    EXPECT_EQ(Reader().read(bytes), 0);
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

TEST(WriteContext, SaysWhatWasWrongAndWritesNoEndMark) {
    int const object = 0;
    struct Case {
        ioStatus status;
        Writing write;
    };
    Case const cases[] = {
        {ioStatus::unknownType, [](auto& c) { c.startPacket("z", nullptr); }},
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
