// Reads packets and the values inside them.
#include "foundation/io/ioReadContext.h"

#include <algorithm>
#include <limits>

#include "foundation/io/ioClientReadContext.h"
#include "foundation/io/ioPacketRegistry.h"

namespace {

/// Counts nested `read` calls; decrements also when one throws.
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
    readFileMark();
    if (ok()) readPackets(client);
}

void ioReadContext::readFileMark() {
    for (char const expected : ioFormat::fileMark) {
        if (!need(1)) return;
        if (*input_.next() != expected) fail(ioStatus::notAPacketFile);
        if (ok()) input_.advance(1);
    }
    if (!need(1)) return;
    if (nextByte() != ioFormat::version) fail(ioStatus::unknownVersion);
    if (ok()) input_.advance(1);
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

/// Enters the next packet. Null on failure, or when its type has no reader.
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
        // A packet without a reader stays open here; this loop skips its content.
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

// Values -----------------------------------------------------------------------------------------------------------

bool ioReadContext::comeToValue() {
    while (ioPacketType* const type = openPacket()) {
        if (readPacket(*type) == Ending::referred) fail(ioStatus::malformed);
    }
    return need(1);
}

bool ioReadContext::readNumber(ioFormat::Kind kind, std::uint64_t& number) {
    if (!need(1)) return false;
    unsigned char const token = nextByte();
    if (ioFormat::kindOf(token) != kind) fail(ioStatus::malformed);
    while (ok()) {
        char const* const end = ioFormat::takeNumber(input_.next(), number);
        if (!end) return fail(ioStatus::malformed), false;
        auto const bytes = static_cast<std::size_t>(end - input_.next());
        if (bytes <= input_.available()) return input_.advance(bytes), true;
        // The zeros after the last byte end any number, so that no byte beyond this one is asked for: a pipe may block.
        static_cast<void>(need(bytes));
    }
    return false;
}

std::int32_t ioReadContext::readZigzag(ioFormat::Kind kind) {
    std::uint64_t code = 0;
    if (!readNumber(kind, code)) return 0;
    if (code > std::numeric_limits<std::uint32_t>::max()) fail(ioStatus::malformed);
    return ok() ? ioFormat::unzigzag(static_cast<std::uint32_t>(code)) : 0;
}

bool ioReadContext::readBoolValue() {
    if (!comeToValue()) return false;
    unsigned char const token = nextByte();
    if (token > ioFormat::trueMark) fail(ioStatus::malformed);
    if (!ok()) return false;
    input_.advance(1);
    return token == ioFormat::trueMark;
}

int ioReadContext::otherIntValue() { return comeToValue() ? readZigzag(ioFormat::integer) : 0; }

double ioReadContext::readDoubleValue() {
    if (!comeToValue()) return 0;
    if (nextByte() != ioFormat::doubleMark) return readZigzag(ioFormat::wholeDouble);
    if (!need(1 + sizeof(double))) return 0;
    double const value = doubleAt(input_.next() + 1);
    input_.advance(1 + sizeof(value));
    return value;
}

std::string_view ioReadContext::otherTextValue() {
    std::uint64_t size = 0;
    if (!comeToValue()) return {};
    if (ioFormat::kindOf(nextByte()) == ioFormat::name) return readName();
    if (!readNumber(ioFormat::text, size)) return {};
    if (size > input_.bufferBytes()) return takeLongText(size);
    return need(size) ? takeText(size) : std::string_view();
}

std::string_view ioReadContext::takeLongText(std::uint64_t size) {
    // The text grows as bytes arrive, whatever size the file claims.
    text_.clear();
    while (text_.size() < size) {
        if (!need(1)) return {};
        std::string_view const piece = takeText(std::min<std::uint64_t>(size - text_.size(), input_.available()));
        if (!ok()) return {};
        text_.append(piece);
    }
    return text_;
}

std::string_view ioReadContext::readName() {
    std::uint64_t number = 0;
    if (!readNumber(ioFormat::name, number)) return {};
    if (number > 0 && names_.knows(number - 1)) return names_.at(number - 1);
    if (number > 0) fail(ioStatus::malformed);
    std::uint64_t size = 0;
    if (!ok() || !readNumber(ioFormat::text, size)) return {};
    if (size > ioNameTable::longestName) fail(ioStatus::malformed);
    if (!ok() || !need(size)) return {};
    std::string_view const text = takeText(size);
    if (!ok()) return {};
    return names_.at(names_.remember(text));
}

char const* ioReadContext::readStringValue() {
    std::string_view const text = readTextValue();
    if (text.data() != text_.data()) text_.assign(text);
    return text_.c_str();
}

void* ioReadContext::use(Object const& object) noexcept {
    if (!object.address) fail(ioStatus::unresolvedReference);
    referencedType_ = object.type;
    return object.address;
}

void* ioReadContext::readReference(int /*flag*/) {
    while (ioPacketType* const type = openPacket()) {
        if (readPacket(*type) == Ending::referred) return referredObject();
    }
    referencedType_ = nullptr;
    std::uint64_t distance = 0;
    if (!readNumber(ioFormat::reference, distance) || distance == 0) return nullptr;
    if (distance > objects_.size()) fail(ioStatus::unresolvedReference);
    return ok() ? use(objects_[objects_.size() - distance]) : nullptr;
}

void* ioReadContext::referredObject() { return use(closed_); }

void ioReadContext::passOverText() {
    std::uint64_t size = 0;
    if (!readNumber(ioFormat::text, size)) return;
    while (size > 0 && need(1)) {
        std::size_t const piece = std::min<std::uint64_t>(size, input_.available());
        input_.advance(piece);
        size -= piece;
    }
}
