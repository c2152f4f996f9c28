// Reads and writes packet files of items.
#include "plst/packets.h"

#include <memory>
#include <utility>

#include "foundation/io/ioReadContext.h"
#include "foundation/io/ioSimplePacketRegistry.h"
#include "foundation/io/ioWriteContext.h"
#include "plst/ReadInterface.h"
#include "plst/WriteInterface.h"
#include "plst/impl/packetNames.h"

namespace nxPLST {
namespace {

constexpr int binaryMethod = 1;

class SimpleWriteInterface : public ioClientWriteContext {
public:
    SimpleWriteInterface(ioWriteContext& context, ioSimplePacketRegistry& registry, ur::Reference<Item const> item)
        : ioClientWriteContext(context), items_(context), item_(std::move(item)) {
        registry.registrationSignal().addCallback(client_, [](ioSimplePacketRegistry& types) {
            ReadInterface::registerTypes(types, nullptr);
            types.add(impl::rootPacketName);
        });
    }

    void write() {
        context().startFile();
        if (item_) {
            context().startPacket(impl::rootPacketName, nullptr);
            items_.writeSeparateTree(item_);
            context().endPacket();
        }
        context().endFile();
    }

private:
    urRTB::SignalClient client_;
    WriteInterface items_;
    ur::Reference<Item const> item_;
};

class SimpleReadInterface : public ioClientReadContext {
public:
    SimpleReadInterface(ioReadContext& context, ioSimplePacketRegistry& registry)
        : ioClientReadContext(context), items_(context) {
        registry.registrationSignal().addCallback(client_, [this](ioSimplePacketRegistry& types) {
            ReadInterface::registerTypes(types, &items_);
            types.supportedType(std::make_unique<ioSimplePacketType>(
                impl::rootPacketName,
                std::make_unique<ioMemberReadCallback<SimpleReadInterface>>(*this, &SimpleReadInterface::readRoot)));
        });
    }
    SimpleReadInterface(SimpleReadInterface const&) = delete;
    SimpleReadInterface& operator=(SimpleReadInterface const&) = delete;
    ~SimpleReadInterface() override = default;

    [[nodiscard]] ur::Reference<Item> takeRoot() { return std::move(item_); }

private:
    void readRoot() { item_ = items_.readItem(); }

    urRTB::SignalClient client_;
    ReadInterface items_;
    ur::Reference<Item> item_;
};

/// Fills the report after the stream was closed with `error`; true on success.
bool conclude(PacketReport& report, urUtil::Error const& error) {
    report.error = error;
    if (report.status == 0 && error.isError()) report.status = static_cast<int>(ioStatus::streamFailed);
    return report.status == 0;
}

}  // namespace

bool write(urOS::IOStream& stream, ur::Reference<Item const> item) {
    PacketReport report;
    return write(stream, std::move(item), report);
}

bool write(urOS::IOStream& stream, ur::Reference<Item const> item, PacketReport& report) {
    report.status = static_cast<int>(ioStatus::noContext);
    ioBufferedStreamOutput output;
    static_cast<void>(output.openIOStream(stream));
    ioSimplePacketRegistry registry(false);
    if (auto const context = ioWriteContextAlloc(output, binaryMethod, registry)) {
        SimpleWriteInterface(*context, registry, std::move(item)).write();
        report.status = context->getStatus();
    }
    report.position = output.position();
    return conclude(report, output.close());
}

bool read(urOS::IOStream& stream, ur::Reference<Item>& item) {
    PacketReport report;
    return read(stream, item, report);
}

bool read(urOS::IOStream& stream, ur::Reference<Item>& item, PacketReport& report) {
    report.status = static_cast<int>(ioStatus::noContext);
    item = nullptr;
    ioBufferedStreamInput input;
    static_cast<void>(input.openIOStream(stream));
    ioSimplePacketRegistry registry(true);
    if (auto const context = ioReadContextAlloc(input, registry)) {
        SimpleReadInterface reader(*context, registry);
        context->readFile(reader);
        report.status = context->getStatus();
        report.position = report.status == 0 ? input.position() : context->getStatusPosition();
        item = reader.takeRoot();
    }
    return conclude(report, input.close());
}

}  // namespace nxPLST
