// Finds an item in a packet file without reading the others.
#include <array>
#include <memory>

#include "foundation/io/ioBufferedStreamInput.h"
#include "foundation/io/ioClientReadContext.h"
#include "foundation/io/ioReadContext.h"
#include "foundation/io/ioSimplePacketRegistry.h"
#include "plst/impl/packetNames.h"
#include "plst/packets.h"

namespace nxPLST {
namespace {

/// The packets of one kind of item.
class KindPacket final : public ioPacketType {
public:
    explicit KindPacket(Type kind) : ioPacketType(impl::packetNames[kind]), kind_(kind) {}

    void read(ioClientReadContext& /*client*/) override {}
    [[nodiscard]] Type kind() const noexcept { return kind_; }

private:
    Type kind_;
};

/// Follows a path through the packets, and ends the reading there.
class PositionFinder : public ioClientReadContext {
public:
    PositionFinder(ioReadContext& context, ioSimplePacketRegistry& registry, Path const& path)
        : ioClientReadContext(context), path_(path) {
        registry.registrationSignal().addCallback(client_, [this](ioSimplePacketRegistry& types) {
            for (Type const kind : {BoolType, DoubleType, StringType, ArrayType, DictionaryType})
                types.supportedType(std::make_unique<KindPacket>(kind));
            types.supportedType(std::make_unique<ioSimplePacketType>(
                impl::rootPacketName,
                std::make_unique<ioMemberReadCallback<PositionFinder>>(*this, &PositionFinder::find)));
        });
    }
    PositionFinder(PositionFinder const&) = delete;
    PositionFinder& operator=(PositionFinder const&) = delete;
    ~PositionFinder() override = default;

private:
    void find() {
        for (auto const& step : path_) {
            if (!enter(step)) break;
        }
        context().refuse();
    }

    /// Goes to the beginning of a child of the next item. False when there is none, or the item is only referred to.
    bool enter(Path::value_type const& step) {
        auto const* const packet = dynamic_cast<KindPacket const*>(context().openPacket());
        bool const isKey = std::holds_alternative<std::string>(step);
        if (!packet || packet->kind() != (isKey ? DictionaryType : ArrayType)) return false;
        int const size = context().readIntValue();
        for (int i = 0; i < size && context().getStatus() == 0; ++i) {
            if (isKey ? context().readTextValue() == std::get<std::string>(step) : i == std::get<long>(step))
                return true;
            passItem();
        }
        return false;
    }

    void passItem() {
        bool const isHere = context().openPacket() && context().closePacket() == ioReadContext::Ending::referred;
        if (!isHere) static_cast<void>(context().readReference(0));
    }

    urRTB::SignalClient client_;
    Path const& path_;
};

}  // namespace

std::uint64_t packetPosition(urOS::IOStream& stream, Path const& path) {
    ioBufferedStreamInput input;
    static_cast<void>(input.openIOStream(stream));
    ioSimplePacketRegistry registry(true);
    auto const context = ioReadContextAlloc(input, registry);
    if (!context) return 0;
    PositionFinder finder(*context, registry, path);
    context->readFile(finder);
    return context->getStatusPosition();
}

}  // namespace nxPLST
