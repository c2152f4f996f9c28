// What readers of many packets need inlined. Included by ioReadContext.h.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

#include "foundation/io/ioReadContext.h"

inline int ioReadContext::readIntValue() {
    if (!input_.ensure(1)) return otherIntValue();
    unsigned char const token = nextByte();
    unsigned const number = ioFormat::numberOf(token);
    if (ioFormat::kindOf(token) != ioFormat::integer || number == ioFormat::longNumber) return otherIntValue();
    input_.advance(1);
    return ioFormat::unzigzag(number);
}

inline double ioReadContext::doubleAt(char const* bytes) noexcept {
    std::uint64_t bits = 0;
    std::memcpy(&bits, bytes, sizeof(bits));
    if constexpr (std::endian::native == std::endian::big) bits = __builtin_bswap64(bits);
    return std::bit_cast<double>(bits);
}

inline std::string_view ioReadContext::readTextValue() {
    if (!input_.ensure(1)) return otherTextValue();
    unsigned char const token = nextByte();
    std::size_t const size = ioFormat::numberOf(token);
    if (ioFormat::kindOf(token) == ioFormat::name && size != 0 && names_.knows(size - 1)) {
        if (size == ioFormat::longNumber) return otherTextValue();
        input_.advance(1);
        return names_.at(size - 1);
    }
    bool const isShort = ioFormat::kindOf(token) == ioFormat::text && size != ioFormat::longNumber;
    if (!isShort || !input_.ensure(1 + size)) return otherTextValue();
    input_.advance(1);
    return takeText(size);
}

inline std::string_view ioReadContext::takeText(std::size_t size) {
    std::string_view const text(input_.next(), size);
    input_.advance(size);
    if (text.find('\0') == std::string_view::npos) return text;
    fail(ioStatus::malformed);
    return {};
}

inline void ioReadContext::definePacketObject(void* object) noexcept {
    if (open_.empty()) return;
    OpenPacket& packet = open_.back();
    packet.object.address = object;
    if (packet.number != noNumber) objects_[packet.number].address = object;
}

inline ioPacketType* ioReadContext::enter(std::size_t number, ioFormat::Kind kind) {
    ioPacketType* const type = types_[number];
    bool const isNumbered = kind == ioFormat::objectPacket;
    open_.push_back({{nullptr, type}, isNumbered ? objects_.size() : noNumber});
    if (isNumbered) objects_.push_back({nullptr, type});
    return type;
}

inline ioPacketType* ioReadContext::openPacket() {
    if (!input_.ensure(1)) return nullptr;
    unsigned char const token = nextByte();
    ioFormat::Kind const kind = ioFormat::kindOf(token);
    std::size_t const number = ioFormat::numberOf(token);
    bool const isStart = kind == ioFormat::objectPacket || kind == ioFormat::plainPacket;
    if (isStart && number != ioFormat::longNumber && number < types_.size() && types_[number]) {
        input_.advance(1);
        return enter(number, kind);
    }
    return isStart || token == ioFormat::typeMark ? openOtherPacket() : nullptr;
}

inline ioReadContext::Ending ioReadContext::leave(unsigned char end) noexcept {
    input_.advance(1);
    closed_ = open_.back().object;
    open_.pop_back();
    if (end == ioFormat::endMark) return Ending::plain;
    if (open_.empty()) fail(ioStatus::malformed);
    return open_.empty() ? Ending::plain : Ending::referred;
}

inline ioReadContext::Ending ioReadContext::closePacket() {
    if (!input_.ensure(1)) return passOver();
    unsigned char const token = nextByte();
    return token == ioFormat::endMark || token == ioFormat::referredEndMark ? leave(token) : passOver();
}

inline ioPacketType* ioReadContext::nextPlainPacket() const noexcept {
    if (input_.available() == 0) return nullptr;
    unsigned const number = nextByte() - unsigned{ioFormat::token(ioFormat::plainPacket, 0)};
    return number < ioFormat::longNumber && number < types_.size() ? types_[number] : nullptr;
}

inline bool ioReadContext::takeReferredEnd(char const* end) noexcept {
    if (static_cast<unsigned char>(*end) != ioFormat::referredEndMark) return false;
    input_.advance(static_cast<std::size_t>(end + 1 - input_.next()));
    return true;
}

inline bool ioReadContext::readReferredPacket(bool& value) noexcept {
    char const* const bytes = input_.next();
    if (input_.available() < 3 || static_cast<unsigned char>(bytes[1]) > ioFormat::trueMark) return false;
    value = bytes[1] == ioFormat::trueMark;
    return takeReferredEnd(bytes + 2);
}

inline bool ioReadContext::readReferredPacket(double& value) noexcept {
    if (input_.available() < 2 + ioFormat::longestToken) return false;
    char const* bytes = input_.next() + 1;
    auto const token = static_cast<unsigned char>(*bytes++);
    if (token == ioFormat::doubleMark) {
        value = doubleAt(bytes);
        return takeReferredEnd(bytes + sizeof(value));
    }
    if (ioFormat::kindOf(token) != ioFormat::wholeDouble) return false;
    std::uint64_t number = ioFormat::numberOf(token);
    if (number == ioFormat::longNumber) bytes = ioFormat::addRest(bytes, bytes + ioFormat::longestRest, number);
    if (!bytes || number > std::numeric_limits<std::uint32_t>::max()) return false;
    value = ioFormat::unzigzag(static_cast<std::uint32_t>(number));
    return takeReferredEnd(bytes);
}

inline bool ioReadContext::readReferredPacket(std::string_view& value) noexcept {
    if (input_.available() < 3) return false;
    char const* const bytes = input_.next() + 1;
    auto const token = static_cast<unsigned char>(*bytes);
    std::size_t const size = ioFormat::numberOf(token);
    bool const isShort = ioFormat::kindOf(token) == ioFormat::text && size != ioFormat::longNumber;
    if (!isShort || input_.available() < 3 + size) return false;
    value = std::string_view(bytes + 1, size);
    return value.find('\0') == std::string_view::npos && takeReferredEnd(bytes + 1 + size);
}
