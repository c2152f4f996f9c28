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
    [[nodiscard]] int getStatus() const noexcept {
        bool const lost = status_ == ioStatus::ok && output_.error().isError();
        return static_cast<int>(lost ? ioStatus::streamFailed : status_);
    }

    /// Begins a packet inside the innermost open one, if any. `object` is what it defines; an object has one packet in
    /// a file. Null when no reference will be written to what the packet defines, but for `endReferredPacket`.
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
    /// The same for a text that is likely to come again, such as a key: if it is short, it costs a byte or two then.
    void writeNameValue(std::string_view value);
    /// Null, or an object whose packet is complete. `flag` is 0; other values are reserved.
    void writeReference(void const* object, int flag);
    /// Whether the object's packet is complete.
    [[nodiscard]] bool isReferenceDefined(void const* object) const;

    // For writers of many packets: the same in fewer steps.
    /// Saves the search by name. `none`, and a fault, when the registry does not support the type.
    [[nodiscard]] ioPacketTypeId typeId(std::string_view typeName);
    void startPacket(ioPacketTypeId type, void const* object);
    /// Saves the search for the object. Requires: no packet of `object` was begun before.
    void startNewPacket(ioPacketTypeId type, void const* object);
    /// The value as its type has it: bool, int, double or `std::string_view`.
    template <class Value>
    void writeValue(Value value);
    /// Ends the packet and refers to its object from the packet around it.
    void endReferredPacket();
    /// A packet without an object of its own that holds one value, and the reference to what it defines.
    template <class Value>
    void writeReferredPacket(ioPacketTypeId type, Value value);
    /// The first byte of such a packet; 0 as long as the file has not named the type, if its number is a long one, and
    /// for `none`.
    [[nodiscard]] unsigned char firstByteOf(ioPacketTypeId type) const noexcept;
    class Cursor;

private:
    friend NX_API std::unique_ptr<ioWriteContext> ioWriteContextAlloc(ioBufferedStreamOutput&, int, ioPacketRegistry&);

    enum class Phase { before, writing, after };
    struct OpenPacket {
        std::size_t firstObject;  ///< of those begun since the packet began, its own included
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

    // Each puts bytes at `to`, where there is room for them, and gives the place behind.
    static char* putMark(char* to, ioFormat::Mark mark) noexcept;
    static char* putValue(char* to, bool value) noexcept;
    static char* putValue(char* to, int value) noexcept;
    static char* putValue(char* to, double value) noexcept;
    // Texts need no more room than the longest token has.
    char* putValue(char* to, std::string_view value);
    // Needs room for two tokens and the name.
    char* putName(char* to, std::string_view name);
    [[gnu::noinline]] char* putOtherName(char* to, std::string_view name);

    ioBufferedStreamOutput& output_;
    ioPacketRegistry& registry_;
    ioStatus status_ = ioStatus::ok;
    Phase phase_ = Phase::before;
    bool takesValues_ = false;  ///< a packet is open and nothing has failed
    std::vector<OpenPacket> open_;
    std::map<std::string, ioPacketTypeId, std::less<>> idOfName_;
    std::vector<int> numbers_;  ///< of types in the file, by `ioPacketTypeId`; negative until the file has named them
    int namedTypes_ = 0;
    std::vector<void const*> objects_;  ///< in the order in which their packets began
    std::unique_ptr<ioImpl::ObjectIndex> index_;
    std::unique_ptr<ioImpl::NameIndex> names_;
};

/// Writes many names and small packets into the innermost open packet in the fewest steps, as long as the buffer has
/// room for them and nothing failed: what it leaves undone is left to the context.
///
/// While it exists nobody else writes to the context.
class ioWriteContext::Cursor {
public:
    explicit Cursor(ioWriteContext& context) noexcept
        : context_(context),
          to_(context.output_.room(0)),
          end_(to_ + (context.takesValues_ ? context.output_.spare() : 0)) {}
    Cursor(Cursor const&) = delete;
    Cursor& operator=(Cursor const&) = delete;
    ~Cursor() { context_.output_.moveTo(to_); }

    /// What a name and a packet's text may have to go in here.
    static constexpr std::size_t longestText = ioFormat::longNumber - 1;

    /// Whether a name and a packet are sure to fit.
    [[nodiscard]] bool hasRoom() const noexcept { return end_ - to_ >= largestEntry; }

    // Require: room, and texts that are not too long.
    /// The same as `writeNameValue`.
    void name(std::string_view value) { to_ = context_.putName(to_, value); }
    /// The same as `writeReferredPacket`. Requires: `first` is not 0, and no NUL.
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
    /// Begins such a packet with one value more: the number of things in it.
    void enter(unsigned char first, int size) {
        *to_++ = static_cast<char>(first);
        to_ = putValue(to_, size);
        context_.open_.push_back({context_.objects_.size(), false});
    }
    /// The same as `endReferredPacket`. Requires: two open packets.
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

/// A context that writes to `output` by method 1, the only one there is; null when `output` is not open or the
/// method is another. Output and registry outlive it.
NX_API std::unique_ptr<ioWriteContext> ioWriteContextAlloc(ioBufferedStreamOutput& output, int method,
                                                           ioPacketRegistry& registry);

#include "foundation/io/ioWriteContextInline.h"
