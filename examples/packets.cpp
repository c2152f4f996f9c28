// Items in packet files: a whole file with one tree, and a custom format that contains items.
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/io/ioReadContext.h"
#include "foundation/io/ioSimplePacketRegistry.h"
#include "foundation/io/ioWriteContext.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "plst/ReadInterface.h"
#include "plst/WriteInterface.h"
#include "plst/make.h"
#include "plst/packets.h"

namespace {

using nxPLST::Item;
using ur::Reference;

Reference<nxPLST::Dictionary> settings() { return nxPLST::dictionary({{"strength", 0.25}}); }

void wholeFile() {
    urOS::MemoryIOStream stream;
    static_cast<void>(stream.open(urOS::openForWriting));
    // [whole]
    nxPLST::PacketReport report;
    if (!nxPLST::write(stream, settings(), report)) std::printf("%s\n", ioStatusText(report.status));
    // [whole]
    std::printf("%llu bytes\n", static_cast<unsigned long long>(report.position));

    static_cast<void>(stream.open(urOS::openRead));
    // [back]
    Reference<Item> root;
    if (!nxPLST::read(stream, root, report)) {
        std::printf("byte %llu: %s\n", static_cast<unsigned long long>(report.position), ioStatusText(report.status));
    }
    // [back]
    std::printf("strength %g\n", nxPLST::get<double>(asDictionary(root), "strength"));
}

// [format]
/// A brush: its size, and settings that several brushes may share.
struct Brush {
    int size = 0;
    Reference<nxPLST::Dictionary> settings;
};

class BrushWriter : public nxPLST::WriteInterface {
public:
    using WriteInterface::WriteInterface;

    void write(Brush const& brush) {
        context().startPacket("example.Brush", nullptr);
        context().writeIntValue(brush.size);
        writeDictionary(brush.settings);
        context().endPacket();
    }
};

class BrushReader : public nxPLST::ReadInterface {
public:
    using ReadInterface::ReadInterface;

    void registerWith(ioSimplePacketRegistry& registry) {
        registerTypes(registry, this);
        auto read = std::make_unique<ioMemberReadCallback<BrushReader>>(*this, &BrushReader::readBrush);
        registry.supportedType(std::make_unique<ioSimplePacketType>("example.Brush", std::move(read)));
    }

    std::vector<Brush> brushes;

private:
    void readBrush() {
        Brush brush;
        brush.size = context().readIntValue();
        brush.settings = readDictionary();
        brushes.push_back(brush);
    }
};
// [format]

void writeBrushes(urOS::IOStream& stream) {
    Reference<nxPLST::Dictionary> const shared = settings();
    // [write]
    ioBufferedStreamOutput output;
    static_cast<void>(output.openIOStream(stream));
    ioSimplePacketRegistry registry(false);
    nxPLST::ReadInterface::registerTypes(registry, nullptr);
    registry.add("example.Brush");

    auto const context = ioWriteContextAlloc(output, 1, registry);
    BrushWriter writer(*context);
    context->startFile();
    writer.write({10, shared});
    writer.write({25, shared});
    context->endFile();
    bool const written = context->getStatus() == 0 && output.close().ok();
    // [write]
    std::printf("written: %d\n", written);
}

void readBrushes(urOS::IOStream& stream) {
    // [read]
    ioBufferedStreamInput input;
    static_cast<void>(input.openIOStream(stream));
    ioSimplePacketRegistry registry(true);
    auto const context = ioReadContextAlloc(input, registry);
    BrushReader reader(*context);
    reader.registerWith(registry);
    context->readFile(reader);
    if (context->getStatus() != 0) return;
    // [read]
    for (Brush const& brush : reader.brushes) std::printf("brush of size %d\n", brush.size);
    std::printf("settings shared: %d\n", reader.brushes[0].settings == reader.brushes[1].settings);
}

}  // namespace

int main() {
    wholeFile();
    urOS::MemoryIOStream stream;
    static_cast<void>(stream.open(urOS::openForWriting));
    writeBrushes(stream);
    static_cast<void>(stream.open(urOS::openRead));
    readBrushes(stream);
    return 0;
}
