// Reads packets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/io/ioBufferedStreamInput.h"
#include "foundation/io/ioFormat.h"
#include "foundation/io/ioNameTable.h"
#include "foundation/io/ioPacketType.h"
#include "foundation/io/ioStatus.h"
#include "foundation/ur/Export.h"

class ioClientReadContext;
class ioPacketRegistry;

/// Reads one file of packets from any source, trusted or not: malformed input ends the reading with a status.
///
/// Packet types read their payload by asking for values in the order in which they were written. Nested packets are
/// read when the value after them is requested. Packets of types without a reader are skipped, but known packets inside
/// them are read. Memory holds only the open packets and the addresses of objects.
///
/// After the first fault (`getStatus`) every value is false, 0, empty or null. One thread at a time.
class NX_API ioReadContext {
public:
    /// The deepest nesting of packets that types read recursively by `read`. Readers that keep their own stack
    /// (`openPacket`) may go as deep as memory allows.
    static constexpr int deepestRead = 200;

    ioReadContext(ioReadContext const&) = delete;
    ioReadContext& operator=(ioReadContext const&) = delete;
    ~ioReadContext();

    /// Reads the file from its mark to its end mark, packet by packet. Registers the registry's types first.
    void readFile(ioClientReadContext& client);
    /// One of `ioStatus`.
    [[nodiscard]] int getStatus() const noexcept { return static_cast<int>(status_); }
    /// The number of bytes that had been read when the first fault was found.
    [[nodiscard]] std::uint64_t getStatusPosition() const noexcept { return statusPosition_; }

    // The next value of the innermost packet. A value of another kind is a fault.
    [[nodiscard]] bool readBoolValue();
    [[nodiscard]] int readIntValue();
    [[nodiscard]] double readDoubleValue();
    /// Valid until the next call of this context.
    [[nodiscard]] char const* readStringValue();
    /// The same with its length. The text contains no NUL and need not be NUL-terminated.
    [[nodiscard]] std::string_view readTextValue();
    /// An object that a packet has defined, or null. Pass 0 as `flag`; other values are reserved.
    [[nodiscard]] void* readReference(int flag);
    /// The type of the packet that defined the object of the last `readReference`.
    [[nodiscard]] ioPacketType const* referencedType() const noexcept { return referencedType_; }
    /// Sets the object that the innermost packet produces. The object must stay in place until the file ends if
    /// `packetIsNumbered`, otherwise until the packet ends.
    void definePacketObject(void* object) noexcept;
    [[nodiscard]] bool packetIsNumbered() const noexcept { return !open_.empty() && open_.back().number != noNumber; }
    /// Ends the reading as malformed. For packet types whose values are inconsistent.
    void refuse() noexcept { fail(ioStatus::malformed); }

    // For readers that keep their own stack: the single steps of `readReference`.
    enum class Ending { plain, referred };
    /// Enters the next packet and returns its type. Null when a value or an end comes next.
    [[nodiscard]] ioPacketType* openPacket();
    /// Leaves the innermost packet and skips its remaining content. `referred`: a reference to its object comes next
    /// and is consumed.
    [[nodiscard]] Ending closePacket();
    /// Lets `type` read the packet just opened, and closes it.
    Ending readPacket(ioPacketType& type);
    /// The object of the packet that was closed as `referred`. Null, and a fault, if the packet defined none.
    [[nodiscard]] void* referredObject();

    /// The type with that number in the file. Null when no type has the number or the type has no reader.
    [[nodiscard]] ioPacketType* numberedType(std::size_t number) const noexcept {
        return number < types_.size() ? types_[number] : nullptr;
    }
    class Cursor;

private:
    friend NX_API std::unique_ptr<ioReadContext> ioReadContextAlloc(ioBufferedStreamInput&, ioPacketRegistry&);

    static constexpr std::size_t noNumber = std::numeric_limits<std::size_t>::max();
    struct Object {
        void* address;  ///< null until the packet defines it
        ioPacketType const* type;
    };
    struct OpenPacket {
        Object object;
        std::size_t number;  ///< index in `objects_`, or `noNumber`
    };

    ioReadContext(ioBufferedStreamInput& input, ioPacketRegistry& registry) : input_(input), registry_(registry) {}

    void fail(ioStatus status) noexcept;
    [[nodiscard]] bool ok() const noexcept { return status_ == ioStatus::ok; }
    /// Makes `bytes` bytes available. False, and a fault, if they are not.
    [[nodiscard]] bool need(std::size_t bytes);
    [[nodiscard]] unsigned char nextByte() const noexcept { return static_cast<unsigned char>(*input_.next()); }

    void readFileMark();
    void readPackets(ioClientReadContext& client);

    // The slow paths of the inline functions.
    [[nodiscard]] int otherIntValue();
    [[nodiscard]] std::string_view otherTextValue();
    [[nodiscard]] ioPacketType* openOtherPacket();

    /// Reads the packets before the next value. False when no value follows.
    [[nodiscard]] bool comeToValue();
    [[nodiscard]] bool readNumber(ioFormat::Kind kind, std::uint64_t& number);
    [[nodiscard]] std::int32_t readZigzag(ioFormat::Kind kind);
    [[nodiscard]] static double doubleAt(char const* bytes) noexcept;
    [[nodiscard]] std::string_view takeText(std::size_t size);
    [[nodiscard]] std::string_view takeLongText(std::uint64_t size);
    [[nodiscard]] std::string_view readName();
    [[nodiscard]] void* use(Object const& object) noexcept;

    [[nodiscard]] bool packetIsNext();
    [[nodiscard]] ioPacketType* beginPacket();
    [[nodiscard]] ioPacketType* enter(std::size_t number, ioFormat::Kind kind);
    void nameType();
    [[nodiscard]] Ending leave(unsigned char end) noexcept;
    void forgetInnermost() noexcept;
    [[nodiscard]] Ending passOver();
    [[nodiscard]] Ending passOverToken();
    [[nodiscard]] Ending passOverMark();
    void passOverText();

    ioBufferedStreamInput& input_;
    ioPacketRegistry& registry_;
    ioClientReadContext* client_ = nullptr;
    ioStatus status_ = ioStatus::ok;
    std::uint64_t statusPosition_ = 0;
    int readDepth_ = 0;
    std::vector<OpenPacket> open_;
    std::vector<ioPacketType*> types_;  ///< by number; null for types without a reader
    std::vector<Object> objects_;       ///< in the order in which their packets begin
    Object closed_{};                   ///< the object of the packet that was closed last
    ioPacketType const* referencedType_ = nullptr;
    std::string text_;
    ioNameTable names_;
};

/// Reads the usual tokens of a file quickly, as long as they lie completely in the buffer: names, packets without a
/// number, and ends that are references. It leaves other tokens to the context, which reports the reason.
///
/// While a cursor exists, nothing else may read from the context.
class ioReadContext::Cursor {
public:
    explicit Cursor(ioReadContext& context) noexcept
        : context_(context), at_(context.input_.next()), end_(at_ + context.input_.available()) {}
    Cursor(Cursor const&) = delete;
    Cursor& operator=(Cursor const&) = delete;
    ~Cursor() { context_.input_.advance(static_cast<std::size_t>(at_ - context_.input_.next())); }

    /// The first byte of the next token.
    [[nodiscard]] unsigned char first() const noexcept { return byteAt(at_); }
    // Each is false, and does not move, when something else comes next. Texts are valid until the next call.
    /// A name that the file gave before.
    [[nodiscard]] bool name(std::string_view& name) noexcept;
    /// Reads a packet that holds one value and ends with a reference.
    [[nodiscard]] bool packet(bool& value) noexcept;
    [[nodiscard]] bool packet(double& value) noexcept;
    [[nodiscard]] bool packet(std::string_view& value) noexcept;
    /// Enters the packet that begins here; `size` receives its number of elements.
    [[nodiscard]] bool enter(std::size_t& size);
    /// Leaves the innermost packet if its end is a reference.
    [[nodiscard]] bool leave() noexcept;

private:
    // A packet's first byte, a value and an end. What ends beyond the available bytes ends in zeros, which are no end
    // of a packet.
    static_assert(1 + ioFormat::longestToken + 1 <= ioBufferedStreamInput::padding);

    [[nodiscard]] static unsigned char byteAt(char const* at) noexcept { return static_cast<unsigned char>(*at); }
    [[nodiscard]] bool endsAt(char const* end) noexcept {
        if (byteAt(end) != ioFormat::referredEndMark) return false;
        at_ = end + 1;
        return true;
    }

    ioReadContext& context_;
    char const* at_;
    char const* end_;
};

/// Creates a context that reads from `input`. Null when `input` is not open. Input and registry must outlive it.
NX_API std::unique_ptr<ioReadContext> ioReadContextAlloc(ioBufferedStreamInput& input, ioPacketRegistry& registry);

#include "foundation/io/ioReadContextInline.h"
