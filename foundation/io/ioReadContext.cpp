// Reads packets.
#include "foundation/io/ioReadContext.h"

#include "foundation/io/ioClientReadContext.h"
#include "foundation/io/ioPacketRegistry.h"

namespace {

/// Counts the packet types that read inside each other, also when one of them throws.
class Nesting {
public:
    explicit Nesting(int& depth) noexcept : depth_(depth) { ++depth_; }
    Nesting(Nesting const&) = delete;
    Nesting& operator=(Nesting const&) = delete;
    ~Nesting() { --depth_; }

private:
    int& depth_;
};

}  // namespace

std::unique_ptr<ioReadContext> ioReadContextAlloc(ioBufferedStreamInput& input, ioPacketRegistry& registry) {
    if (!input.isOpen()) return nullptr;
    return std::unique_ptr<ioReadContext>(new ioReadContext(input, registry));
}

ioReadContext::~ioReadContext() = default;

void ioReadContext::fail(ioStatus status) noexcept {
    if (!ok()) return;
    status_ = status;
    statusPosition_ = input_.position();
    input_.abandon();
}

bool ioReadContext::need(std::size_t bytes) {
    if (input_.ensure(bytes)) return true;
    input_.advance(input_.available());
    fail(input_.error().isError() ? ioStatus::streamFailed : ioStatus::truncated);
    return false;
}

// The file -------------------------------------------------------------------------------------------------------

void ioReadContext::readFile(ioClientReadContext& client) {
    if (client_) return fail(ioStatus::misuse);
    client_ = &client;
    registry_.registerTypes();
    if (readFileMark()) readPackets(client);
}

bool ioReadContext::readFileMark() {
    for (char const expected : ioFormat::fileMark) {
        if (!need(1)) return false;
        if (*input_.next() != expected) fail(ioStatus::notAPacketFile);
        if (ok()) input_.advance(1);
    }
    if (!need(1)) return false;
    if (nextByte() != ioFormat::version) fail(ioStatus::unknownVersion);
    if (ok()) input_.advance(1);
    return ok();
}

void ioReadContext::readPackets(ioClientReadContext& client) {
    while (ioPacketType* const type = openPacket()) {
        client.prePacketRead(*type);
        readPacket(*type);
        if (!ok()) return;
        client.postPacketRead(*type);
    }
    if (!need(1)) return;
    if (nextByte() != ioFormat::endOfFileMark) return fail(ioStatus::malformed);
    input_.advance(1);
}

// Packets --------------------------------------------------------------------------------------------------------

bool ioReadContext::packetIsNext() {
    if (!input_.ensure(1)) return false;
    ioFormat::Kind const kind = ioFormat::kindOf(nextByte());
    return kind == ioFormat::objectPacket || kind == ioFormat::plainPacket || nextByte() == ioFormat::typeMark;
}

ioPacketType* ioReadContext::openOtherPacket() {
    while (packetIsNext()) {
        ioPacketType* const type = beginPacket();
        if (type || !ok()) return type;
        if (passOver() == Ending::referred) fail(ioStatus::unresolvedReference);
    }
    return nullptr;
}

/// Enters the packet that is next. Null when it failed, or when nobody reads its type.
ioPacketType* ioReadContext::beginPacket() {
    while (ok() && nextByte() == ioFormat::typeMark) nameType();
    if (!ok()) return nullptr;
    ioFormat::Kind const kind = ioFormat::kindOf(nextByte());
    if (kind != ioFormat::objectPacket && kind != ioFormat::plainPacket) fail(ioStatus::malformed);
    std::uint64_t number = 0;
    if (!ok() || !readNumber(kind, number)) return nullptr;
    if (number >= types_.size()) fail(ioStatus::malformed);
    return ok() ? enter(number, kind) : nullptr;
}

void ioReadContext::nameType() {
    input_.advance(1);
    std::uint64_t size = 0;
    if (!readNumber(ioFormat::text, size)) return;
    if (size == 0 || size > ioFormat::longestTypeName) return fail(ioStatus::malformed);
    if (!need(size)) return;
    std::string_view const name = takeText(size);
    if (ok()) types_.push_back(registry_.reader(name));
    static_cast<void>(need(1));
}

ioReadContext::Ending ioReadContext::readPacket(ioPacketType& type) {
    if (readDepth_ == deepestRead) fail(ioStatus::tooDeep);
    if (!ok()) return Ending::plain;
    Nesting const nesting(readDepth_);
    type.read(*client_);
    if (type.hasUnresolvedPointer()) fail(ioStatus::unresolvedReference);
    if (ok() && type.memoryNotReferenced()) definePacketObject(nullptr);
    return ok() ? closePacket() : Ending::plain;
}

ioReadContext::Ending ioReadContext::passOver() {
    std::size_t const outside = open_.size() - 1;
    Ending ending = Ending::plain;
    while (ok() && open_.size() > outside) ending = passOverToken();
    return ok() ? ending : Ending::plain;
}

ioReadContext::Ending ioReadContext::passOverToken() {
    if (packetIsNext()) {
        // A packet that nobody reads stays open here and is passed over by the same loop.
        ioPacketType* const type = beginPacket();
        if (type) readPacket(*type);
        return Ending::plain;
    }
    if (!need(1)) return Ending::plain;
    ioFormat::Kind const kind = ioFormat::kindOf(nextByte());
    if (kind == ioFormat::mark) return passOverMark();
    std::uint64_t number = 0;
    if (kind == ioFormat::text) {
        passOverText();
    } else if (kind == ioFormat::name) {
        static_cast<void>(readName());
    } else if (kind == ioFormat::integer || kind == ioFormat::wholeDouble || kind == ioFormat::reference) {
        static_cast<void>(readNumber(kind, number));
    } else {
        fail(ioStatus::malformed);
    }
    return Ending::plain;
}

ioReadContext::Ending ioReadContext::passOverMark() {
    unsigned char const token = nextByte();
    switch (token) {
        case ioFormat::falseMark:
        case ioFormat::trueMark: input_.advance(1); break;
        case ioFormat::doubleMark:
            if (need(1 + sizeof(double))) input_.advance(1 + sizeof(double));
            break;
        case ioFormat::endMark:
        case ioFormat::referredEndMark: return leave(token);
        default: fail(ioStatus::malformed);
    }
    return Ending::plain;
}
