// Writes packets.
#pragma once

#include <concepts>
#include <cstddef>
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
class NameIndex;
class ObjectIndex;
}  // namespace ioImpl

/// Identifies a packet type in one context.
enum class ioPacketTypeId : int { none = -1 };

/// Writes one file of packets that hold values, references to objects and further packets.
///
/// A packet defines an object, and later references name it. The context knows objects by address only, so they must
/// live until the file ends. Memory holds only the open packets and the addresses. After the first fault (`getStatus`)
/// every call does nothing. One thread at a time.
class NX_API ioWriteContext {
public:
    ioWriteContext(ioWriteContext const&) = delete;
    ioWriteContext& operator=(ioWriteContext const&) = delete;
    ~ioWriteContext();

    /// Writes the file mark. Registers the registry's types first. A context writes one file.
    void startFile();
    /// Writes the end mark. Requires: no open packet.
    void endFile();
    /// One of `ioStatus`.
    [[nodiscard]] int getStatus() const noexcept {
        bool const lost = status_ == ioStatus::ok && output_.error().isError();
        return static_cast<int>(lost ? ioStatus::streamFailed : status_);
    }

    /// Begins a packet inside the innermost open one, if any. The packet defines `object`; each object has one packet
    /// per file. Null when only `endReferredPacket` will refer to the object.
    void startPacket(char const* typeName, void const* object);
    void endPacket();

    // These write into the innermost open packet.
    void writeBoolValue(bool value);
    void writeIntValue(int value);
    void writeDoubleValue(double value);
    /// Writes up to the terminating NUL.
    void writeStringValue(char const* value) { writeTextValue(value); }
    /// Writes up to the first NUL.
    void writeTextValue(std::string_view value);
    /// The same for a text that is likely to recur, such as a key: each repetition of a short text takes a byte or two.
    void writeNameValue(std::string_view value);
    /// `object` is null or an object whose packet is complete. Pass 0 as `flag`; other values are reserved.
    void writeReference(void const* object, int flag);
    /// Whether the object's packet is complete.
    [[nodiscard]] bool isReferenceDefined(void const* object) const;

    // Faster calls for writers of many packets.
    /// Saves the search by name. `none`, and a fault, when the registry does not support the type.
    [[nodiscard]] ioPacketTypeId typeId(std::string_view typeName);
    void startPacket(ioPacketTypeId type, void const* object);
    /// Saves the search for the object. Requires: `object` has no packet yet.
    void startNewPacket(ioPacketTypeId type, void const* object);
    /// Writes the value by its type: bool, int, double or `std::string_view`.
    template <class Value>
    void writeValue(Value value);
    /// Ends the packet and refers to its object from the enclosing packet.
    void endReferredPacket();
    /// Writes a packet without an object that holds one value, and the reference to what it defines.
    template <class Value>
    void writeReferredPacket(ioPacketTypeId type, Value value);
    /// The first byte of such a packet. 0 until the file has named the type, if the type's number is long, and for
    /// `none`.
    [[nodiscard]] unsigned char firstByteOf(ioPacketTypeId type) const noexcept;
    class Cursor;

private:
    friend NX_API std::unique_ptr<ioWriteContext> ioWriteContextAlloc(ioBufferedStreamOutput&, int, ioPacketRegistry&);

    enum class Phase { before, writing, after };
    struct OpenPacket {
        std::size_t firstObject;  ///< among the objects begun since this packet began, its own included
        bool hasObject;
    };

    ioWriteContext(ioBufferedStreamOutput& output, ioPacketRegistry& registry);

    void fail(ioStatus status) noexcept;
    [[nodiscard]] bool mayStart(ioPacketTypeId type);
    [[nodiscard]] unsigned numberOf(ioPacketTypeId type);
    void nameType(ioPacketTypeId type);
    void end(ioFormat::Mark mark);
    [[nodiscard]] std::size_t positionOf(void const* object) const;
    [[nodiscard]] bool isOpen(std::size_t position) const noexcept;

    // Each writes bytes to `to`, which has room for them, and returns the position after them.
    static char* putMark(char* to, ioFormat::Mark mark) noexcept;
    static char* putValue(char* to, bool value) noexcept;
    static char* putValue(char* to, int value) noexcept;
    static char* putValue(char* to, double value) noexcept;
    // Requires room for the longest token; texts need no more.
    char* putValue(char* to, std::string_view value);
    // Requires room for two tokens and the name.
    char* putName(char* to, std::string_view name);
    [[gnu::noinline]] char* putOtherName(char* to, std::string_view name);

    ioBufferedStreamOutput& output_;
    ioPacketRegistry& registry_;
    ioStatus status_ = ioStatus::ok;
    Phase phase_ = Phase::before;
    bool takesValues_ = false;  ///< a packet is open and no fault occurred
    std::vector<OpenPacket> open_;
    std::map<std::string, ioPacketTypeId, std::less<>> idOfName_;
    std::vector<int>
        numbers_;  ///< the types' numbers in the file, by `ioPacketTypeId`; negative until the file has named the type
    int namedTypes_ = 0;
    std::vector<void const*> objects_;  ///< in the order in which their packets begin
    std::unique_ptr<ioImpl::ObjectIndex> index_;
    std::unique_ptr<ioImpl::NameIndex> names_;
};

/// Writes many names and small packets into the innermost open packet quickly, as long as the buffer has room and no
/// fault occurs. The context writes what the cursor does not.
///
/// While a cursor exists, nothing else may write to the context.
class ioWriteContext::Cursor {
public:
    explicit Cursor(ioWriteContext& context) noexcept
        : context_(context),
          to_(context.output_.room(0)),
          end_(to_ + (context.takesValues_ ? context.output_.spare() : 0)) {}
    Cursor(Cursor const&) = delete;
    Cursor& operator=(Cursor const&) = delete;
    ~Cursor() { context_.output_.moveTo(to_); }

    /// The longest name and text that a cursor writes.
    static constexpr std::size_t longestText = ioFormat::longNumber - 1;

    /// Whether a name and a packet certainly fit.
    [[nodiscard]] bool hasRoom() const noexcept { return end_ - to_ >= largestEntry; }

    // Require: `hasRoom()`, and texts up to `longestText`.
    /// As `writeNameValue`.
    void name(std::string_view value) { to_ = context_.putName(to_, value); }
    /// As `writeReferredPacket`. Requires: `first` is not 0; texts contain no NUL.
    template <class Value>
    void packet(unsigned char first, Value value) noexcept {
        *to_++ = static_cast<char>(first);
        if constexpr (std::same_as<Value, std::string_view>) {
            *to_++ = static_cast<char>(ioFormat::token(ioFormat::text, static_cast<unsigned>(value.size())));
            to_ += value.copy(to_, value.size());
        } else {
            to_ = putValue(to_, value);
        }
        to_ = putMark(to_, ioFormat::referredEndMark);
    }
    /// Begins such a packet with one more value: its number of elements.
    void enter(unsigned char first, int size) {
        *to_++ = static_cast<char>(first);
        to_ = putValue(to_, size);
        context_.open_.push_back({context_.objects_.size(), false});
    }
    /// As `endReferredPacket`. Requires: two open packets.
    void leave() noexcept {
        to_ = putMark(to_, ioFormat::referredEndMark);
        context_.open_.pop_back();
    }

private:
    static constexpr std::ptrdiff_t largestEntry = 5 * ioFormat::longestToken + 2 * longestText;

    ioWriteContext& context_;
    char* to_;
    char* end_;
};

/// Creates a context that writes to `output` by method 1, the only method. Null when `output` is not open or the method
/// is another. Output and registry must outlive it.
NX_API std::unique_ptr<ioWriteContext> ioWriteContextAlloc(ioBufferedStreamOutput& output, int method,
                                                           ioPacketRegistry& registry);

#include "foundation/io/ioWriteContextInline.h"
