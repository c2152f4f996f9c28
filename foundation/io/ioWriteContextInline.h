// The inline functions of ioWriteContext, for writers of many packets. Included by ioWriteContext.h.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "foundation/io/ioWriteContext.h"

inline char* ioWriteContext::putMark(char* to, ioFormat::Mark mark) noexcept {
    return ioFormat::putToken(to, ioFormat::mark, mark);
}

inline char* ioWriteContext::putValue(char* to, bool value) noexcept {
    return putMark(to, value ? ioFormat::trueMark : ioFormat::falseMark);
}

inline char* ioWriteContext::putValue(char* to, int value) noexcept {
    return ioFormat::putToken(to, ioFormat::integer, ioFormat::zigzag(value));
}

inline char* ioWriteContext::putValue(char* to, double value) noexcept {
    // Compares bits, so that -0.0 is not a whole number here.
    bool const small = value >= -2147483648.0 && value <= 2147483647.0;
    auto const whole = static_cast<std::int32_t>(small ? value : 0.0);
    auto bits = std::bit_cast<std::uint64_t>(value);
    if (std::bit_cast<std::uint64_t>(static_cast<double>(whole)) == bits) {
        return ioFormat::putToken(to, ioFormat::wholeDouble, ioFormat::zigzag(whole));
    }
    if constexpr (std::endian::native == std::endian::big) bits = __builtin_bswap64(bits);
    to = putMark(to, ioFormat::doubleMark);
    std::memcpy(to, &bits, sizeof(bits));
    return to + sizeof(bits);
}

inline char* ioWriteContext::putValue(char* to, std::string_view value) {
    value = value.substr(0, value.find('\0'));
    to = ioFormat::putToken(to, ioFormat::text, value.size());
    output_.moveTo(to);
    output_.write(value);
    return output_.room(ioFormat::longestToken);
}

template <class Value>
void ioWriteContext::writeValue(Value value) {
    if (!takesValues_) return fail(ioStatus::misuse);
    output_.moveTo(putValue(output_.room(ioFormat::longestToken), value));
}

inline void ioWriteContext::writeBoolValue(bool value) { writeValue(value); }
inline void ioWriteContext::writeIntValue(int value) { writeValue(value); }
inline void ioWriteContext::writeDoubleValue(double value) { writeValue(value); }
inline void ioWriteContext::writeTextValue(std::string_view value) { writeValue(value); }

/// The type's number in the file; writes its name first if needed.
inline unsigned ioWriteContext::numberOf(ioPacketTypeId type) {
    int const& number = numbers_[static_cast<std::size_t>(type)];
    if (number < 0) nameType(type);
    return static_cast<unsigned>(number);
}

inline bool ioWriteContext::mayStart(ioPacketTypeId type) {
    if (phase_ == Phase::writing && type != ioPacketTypeId::none) return true;
    fail(ioStatus::misuse);
    return false;
}

inline unsigned char ioWriteContext::firstByteOf(ioPacketTypeId type) const noexcept {
    if (type == ioPacketTypeId::none) return 0;
    auto const number = static_cast<unsigned>(numbers_[static_cast<std::size_t>(type)]);
    return number < ioFormat::longNumber ? ioFormat::token(ioFormat::plainPacket, number) : 0;
}

template <class Value>
void ioWriteContext::writeReferredPacket(ioPacketTypeId type, Value value) {
    if (!takesValues_ || !mayStart(type)) return fail(ioStatus::misuse);
    unsigned const number = numberOf(type);
    char* to = output_.room(3 * ioFormat::longestToken);
    to = ioFormat::putToken(to, ioFormat::plainPacket, number);
    to = putValue(to, value);
    output_.moveTo(putMark(to, ioFormat::referredEndMark));
}

inline void ioWriteContext::startNewPacket(ioPacketTypeId type, void const* object) {
    if (!mayStart(type)) return;
    unsigned const number = numberOf(type);
    ioFormat::Kind const kind = object ? ioFormat::objectPacket : ioFormat::plainPacket;
    output_.moveTo(ioFormat::putToken(output_.room(ioFormat::longestToken), kind, number));
    open_.push_back({objects_.size(), object != nullptr});
    if (object) objects_.push_back(object);
    takesValues_ = true;
}

inline void ioWriteContext::end(ioFormat::Mark mark) {
    if (!takesValues_) return fail(ioStatus::misuse);
    output_.moveTo(putMark(output_.room(1), mark));
    open_.pop_back();
    takesValues_ = !open_.empty();
}

inline void ioWriteContext::endPacket() { end(ioFormat::endMark); }

inline void ioWriteContext::endReferredPacket() {
    if (open_.size() < 2) return fail(ioStatus::misuse);
    end(ioFormat::referredEndMark);
}
