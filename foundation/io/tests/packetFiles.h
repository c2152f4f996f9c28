// Test helpers that write and read packets in memory.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/io/ioClientReadContext.h"
#include "foundation/io/ioReadContext.h"
#include "foundation/io/ioSimplePacketRegistry.h"
#include "foundation/io/ioWriteContext.h"
#include "foundation/urOS/MemoryIOStream.h"

namespace ioTest {

using Writing = std::function<void(ioWriteContext&)>;
using Reading = std::function<void(ioReadContext&)>;

inline int number(ioStatus status) { return static_cast<int>(status); }

inline void addTypes(ioSimplePacketRegistry& types) {
    for (char const* name : {"a", "b", "c"}) types.add(name);
}

/// Small, so that tests reach the ends of buffers.
inline constexpr std::size_t leastOutput = 128;
inline constexpr std::size_t leastInput = 256;

/// The bytes that `write` adds between the start and end of a file. The known types are "a", "b" and "c" by default.
inline std::string written(Writing const& write, int expectedStatus = 0,
                           void (*types)(ioSimplePacketRegistry&) = addTypes, std::size_t buffer = leastOutput) {
    urOS::MemoryIOStream stream(100);
    static_cast<void>(stream.open(urOS::openForWriting));
    ioBufferedStreamOutput output(buffer);
    static_cast<void>(output.openIOStream(stream));
    ioSimplePacketRegistry registry(false);
    urRTB::SignalClient client;
    registry.registrationSignal().addCallback(client, types);
    auto const context = ioWriteContextAlloc(output, 1, registry);
    context->startFile();
    write(*context);
    context->endFile();
    EXPECT_EQ(context->getStatus(), expectedStatus);
    EXPECT_TRUE(output.close().ok());
    return std::string(stream.contents());
}

/// A packet type that reads through a function.
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

/// Returns its bytes in pieces of `piece` bytes, then fails if asked to.
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

/// Reads a stream with the given types and returns the status.
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
        ioBufferedStreamInput input(buffer);
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
    std::size_t buffer = leastInput;

private:
    std::vector<std::unique_ptr<FunctionType>> types_;
};

inline std::string file(std::string_view tokens) {
    return std::string(ioFormat::fileMark) + '\1' + std::string(tokens);
}

}  // namespace ioTest
