// Writes packets.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/io/ioBufferedStreamOutput.h"
#include "foundation/io/ioFormat.h"
#include "foundation/io/ioStatus.h"
#include "foundation/ur/Export.h"

class ioPacketRegistry;

namespace ioImpl {
class ObjectIndex;
}

/// Names a packet type to one context.
enum class ioPacketTypeId : int { none = -1 };

/// Writes one file of packets that hold values, references to objects and further packets.
///
/// An object is what one packet defines and later references name. The context knows objects by address only, so
/// they must live until the file ends. Only the open packets and the addresses are held in memory.
/// After the first fault (`getStatus`) every call does nothing. One thread at a time.
class NX_API ioWriteContext {
public:
    ioWriteContext(ioWriteContext const&) = delete;
    ioWriteContext& operator=(ioWriteContext const&) = delete;
    ~ioWriteContext();

    /// The file mark. Asks the registry for its types. A context writes one file.
    void startFile();
    /// The end mark. Requires: no open packet.
    void endFile();
    /// One of `ioStatus`.
    [[nodiscard]] int getStatus() const noexcept;

    /// Begins a packet inside the innermost open one, if any. `object` is what it defines, or null; an object has one
    /// packet in a file.
    void startPacket(char const* typeName, void const* object);
    void endPacket();

    // Values go into the innermost open packet.
    void writeBoolValue(bool value);
    void writeIntValue(int value);
    void writeDoubleValue(double value);
    /// Up to the terminating NUL.
    void writeStringValue(char const* value) { writeTextValue(value); }
    /// Up to the first NUL.
    void writeTextValue(std::string_view value);
    /// Null, or an object whose packet is complete. `flag` is 0; other values are reserved.
    void writeReference(void const* object, int flag);
    /// Whether the object's packet is complete.
    [[nodiscard]] bool isReferenceDefined(void const* object) const;

    // For writers of many packets: the same without a search by name, and without one for the object.
    /// `none`, and a fault, when the registry does not support the type.
    [[nodiscard]] ioPacketTypeId typeId(std::string_view typeName);
    void startPacket(ioPacketTypeId type, void const* object);
    /// Requires: no packet of `object` was begun before.
    void startNewPacket(ioPacketTypeId type, void const* object);
    /// Whether any packet with an object was begun.
    [[nodiscard]] bool hasObjects() const noexcept { return !objects_.empty(); }

private:
    friend NX_API std::unique_ptr<ioWriteContext> ioWriteContextAlloc(ioBufferedStreamOutput&, int, ioPacketRegistry&);

    enum class Phase { before, writing, after };
    struct Type {
        std::string name;
        int number;  ///< in the file; negative until the file has named it
    };
    struct OpenPacket {
        std::size_t firstObject;  ///< of those begun since the packet began, its own included
        bool hasObject;
    };

    ioWriteContext(ioBufferedStreamOutput& output, ioPacketRegistry& registry);

    void fail(ioStatus status) noexcept;
    void putMark(ioFormat::Mark mark);
    void putToken(ioFormat::Kind kind, std::uint64_t number);
    void putLongToken(ioFormat::Kind kind, std::uint64_t number);
    void putDouble(double value);
    void nameType(Type& type);
    void writeOtherReference(void const* object);
    [[nodiscard]] std::size_t positionOf(void const* object) const;
    [[nodiscard]] bool isOpen(std::size_t position) const noexcept;

    ioBufferedStreamOutput& output_;
    ioPacketRegistry& registry_;
    ioStatus status_ = ioStatus::ok;
    Phase phase_ = Phase::before;
    bool takesValues_ = false;  ///< a packet is open and nothing has failed
    std::vector<OpenPacket> open_;
    std::vector<Type> types_;
    std::map<std::string, ioPacketTypeId, std::less<>> idOfName_;
    std::vector<void const*> objects_;  ///< in the order in which their packets began
    std::unique_ptr<ioImpl::ObjectIndex> index_;
    void const* ended_ = nullptr;  ///< the object of the packet that ended at `endedAt_`
    std::uint64_t endedAt_ = 0;
};

/// A context that writes to `output` by method 1, the only one there is; null when `output` is not open or the
/// method is another. Output and registry outlive it.
NX_API std::unique_ptr<ioWriteContext> ioWriteContextAlloc(ioBufferedStreamOutput& output, int method,
                                                           ioPacketRegistry& registry);

inline void ioWriteContext::putToken(ioFormat::Kind kind, std::uint64_t number) {
    if (number >= ioFormat::longNumber) return putLongToken(kind, number);
    *output_.room(1) = static_cast<char>(ioFormat::token(kind, static_cast<unsigned>(number)));
    output_.advance(1);
}

inline void ioWriteContext::putMark(ioFormat::Mark mark) { putToken(ioFormat::mark, mark); }

inline void ioWriteContext::writeBoolValue(bool value) {
    if (!takesValues_) return fail(ioStatus::misuse);
    putMark(value ? ioFormat::trueMark : ioFormat::falseMark);
}

inline void ioWriteContext::writeIntValue(int value) {
    if (!takesValues_) return fail(ioStatus::misuse);
    putToken(ioFormat::integer, ioFormat::zigzag(value));
}

inline void ioWriteContext::writeDoubleValue(double value) {
    if (!takesValues_) return fail(ioStatus::misuse);
    // Bits are compared, so that -0.0 is no whole number here.
    bool const small = value >= -2147483648.0 && value <= 2147483647.0;
    auto const whole = static_cast<std::int32_t>(small ? value : 0.0);
    if (std::bit_cast<std::uint64_t>(static_cast<double>(whole)) == std::bit_cast<std::uint64_t>(value)) {
        return putToken(ioFormat::wholeDouble, ioFormat::zigzag(whole));
    }
    putDouble(value);
}

inline void ioWriteContext::putDouble(double value) {
    char* const to = output_.room(1 + sizeof(value));
    to[0] = static_cast<char>(ioFormat::token(ioFormat::mark, ioFormat::doubleMark));
    auto bits = std::bit_cast<std::uint64_t>(value);
    if constexpr (std::endian::native == std::endian::big) bits = __builtin_bswap64(bits);
    std::memcpy(to + 1, &bits, sizeof(bits));
    output_.advance(1 + sizeof(bits));
}

inline void ioWriteContext::writeTextValue(std::string_view value) {
    if (!takesValues_) return fail(ioStatus::misuse);
    value = value.substr(0, value.find('\0'));
    putToken(ioFormat::text, value.size());
    output_.write(value);
}

inline void ioWriteContext::writeReference(void const* object, int /*flag*/) {
    // The usual case: a reference to the object whose packet ended just now is made part of that end.
    bool const justEnded = object && object == ended_ && output_.position() == endedAt_ && takesValues_;
    if (justEnded && output_.amend(static_cast<char>(ioFormat::token(ioFormat::mark, ioFormat::referredEndMark)))) {
        ended_ = nullptr;
        return;
    }
    writeOtherReference(object);
}

inline void ioWriteContext::startNewPacket(ioPacketTypeId type, void const* object) {
    if (phase_ != Phase::writing || type == ioPacketTypeId::none) return fail(ioStatus::misuse);
    Type& named = types_[static_cast<std::size_t>(type)];
    if (named.number < 0) nameType(named);
    putToken(object ? ioFormat::objectPacket : ioFormat::plainPacket, static_cast<unsigned>(named.number));
    open_.push_back({objects_.size(), object != nullptr});
    if (object) objects_.push_back(object);
    takesValues_ = true;
}

inline void ioWriteContext::endPacket() {
    if (!takesValues_) return fail(ioStatus::misuse);
    OpenPacket const packet = open_.back();
    open_.pop_back();
    takesValues_ = !open_.empty();
    putMark(ioFormat::endMark);
    ended_ = packet.hasObject ? objects_[packet.firstObject] : nullptr;
    endedAt_ = output_.position();
}
