// The inline functions of ioReadContext, for readers of many packets. Included by ioReadContext.h.
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

inline void ioReadContext::forgetInnermost() noexcept {
    closed_ = open_.back().object;
    open_.pop_back();
}

inline ioReadContext::Ending ioReadContext::leave(unsigned char end) noexcept {
    input_.advance(1);
    forgetInnermost();
    if (end == ioFormat::endMark) return Ending::plain;
    if (open_.empty()) fail(ioStatus::malformed);
    return open_.empty() ? Ending::plain : Ending::referred;
}

inline ioReadContext::Ending ioReadContext::closePacket() {
    if (!input_.ensure(1)) return passOver();
    unsigned char const token = nextByte();
    return token == ioFormat::endMark || token == ioFormat::referredEndMark ? leave(token) : passOver();
}

inline bool ioReadContext::Cursor::name(std::string_view& name) noexcept {
    unsigned char const token = byteAt(at_);
    if (ioFormat::kindOf(token) != ioFormat::name) return false;
    std::uint64_t number = 0;
    char const* const next = ioFormat::takeNumber(at_, number);
    if (!next || next > end_ || number == 0 || !context_.names_.knows(number - 1)) return false;
    name = context_.names_.at(number - 1);
    at_ = next;
    return true;
}

inline bool ioReadContext::Cursor::packet(bool& value) noexcept {
    unsigned char const mark = byteAt(at_ + 1);
    value = mark == ioFormat::trueMark;
    return mark <= ioFormat::trueMark && endsAt(at_ + 2);
}

inline bool ioReadContext::Cursor::packet(double& value) noexcept {
    unsigned char const token = byteAt(at_ + 1);
    if (token == ioFormat::doubleMark) {
        value = doubleAt(at_ + 2);
        return endsAt(at_ + 2 + sizeof(value));
    }
    if (ioFormat::kindOf(token) != ioFormat::wholeDouble) return false;
    std::uint64_t number = 0;
    char const* const next = ioFormat::takeNumber(at_ + 1, number);
    if (!next || number > std::numeric_limits<std::uint32_t>::max()) return false;
    value = ioFormat::unzigzag(static_cast<std::uint32_t>(number));
    return endsAt(next);
}

inline bool ioReadContext::Cursor::packet(std::string_view& value) noexcept {
    if (ioFormat::kindOf(byteAt(at_ + 1)) != ioFormat::text) return false;
    std::uint64_t size = 0;
    char const* const next = ioFormat::takeNumber(at_ + 1, size);
    if (!next || next >= end_ || size >= static_cast<std::uint64_t>(end_ - next)) return false;
    value = std::string_view(next, size);
    return value.find('\0') == std::string_view::npos && endsAt(next + size);
}

inline bool ioReadContext::Cursor::enter(std::size_t& size) {
    unsigned char const token = byteAt(at_ + 1);
    unsigned const number = ioFormat::numberOf(token);
    static_assert(ioFormat::unzigzag(ioFormat::longNumber) < 0, "a long number is refused like a negative one");
    if (ioFormat::kindOf(token) != ioFormat::integer || ioFormat::unzigzag(number) < 0) return false;
    static_cast<void>(context_.enter(ioFormat::numberOf(first()), ioFormat::plainPacket));
    size = static_cast<std::size_t>(ioFormat::unzigzag(number));
    at_ += 2;
    return true;
}

inline bool ioReadContext::Cursor::leave() noexcept {
    if (context_.open_.size() < 2 || !endsAt(at_)) return false;
    context_.forgetInnermost();
    return true;
}
