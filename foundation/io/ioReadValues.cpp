// The values inside packets, as a read context takes them up.
#include <algorithm>
#include <limits>

#include "foundation/io/ioReadContext.h"

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
    if (!ok()) return false;
    input_.advance(1);
    number = ioFormat::numberOf(token);
    return number != ioFormat::longNumber || readRest(number);
}

bool ioReadContext::readRest(std::uint64_t& number) {
    // No byte more than the number has: behind the last ones of the file, a pipe may have none to give for long.
    std::size_t bytes = 0;
    do {
        if (!need(++bytes)) return false;
    } while (bytes < ioFormat::longestRest && static_cast<unsigned char>(input_.next()[bytes - 1]) >= 0x80);
    char const* const end = ioFormat::addRest(input_.next(), input_.next() + bytes, number);
    if (!end) fail(ioStatus::malformed);
    if (end) input_.advance(bytes);
    return end;
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
    // The text grows with the bytes that arrive, whatever size the file promises.
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
