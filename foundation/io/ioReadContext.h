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

/// Reads one file of packets, of any origin: what does not make sense ends the reading with a status.
///
/// Packet types read the payload of their packets by asking for the values in the order in which they were written.
/// Packets inside a packet are read when the value behind them is asked for. Packets of types without a reader are
/// passed over, known ones inside them are read. Only the open packets and the addresses of objects are held.
///
/// After the first fault (`getStatus`) every value is false, 0, empty or null. One thread at a time.
class NX_API ioReadContext {
public:
    /// How many packets may be read inside each other by their types' `read`. Readers that keep a stack of their own
    /// (`openPacket`) go as deep as memory allows.
    static constexpr int deepestRead = 200;

    ioReadContext(ioReadContext const&) = delete;
    ioReadContext& operator=(ioReadContext const&) = delete;
    ~ioReadContext();

    /// Reads the file from its mark to its end mark, packet by packet. Asks the registry for its types.
    void readFile(ioClientReadContext& client);
    /// One of `ioStatus`.
    [[nodiscard]] int getStatus() const noexcept { return static_cast<int>(status_); }
    /// How many bytes of the file had been read when the first fault was found.
    [[nodiscard]] std::uint64_t getStatusPosition() const noexcept { return statusPosition_; }

    // The next value of the innermost packet; one of another kind is a fault.
    [[nodiscard]] bool readBoolValue();
    [[nodiscard]] int readIntValue();
    [[nodiscard]] double readDoubleValue();
    /// Valid until the next call of this context.
    [[nodiscard]] char const* readStringValue();
    /// The same with its length; no NUL is inside and none need be behind it.
    [[nodiscard]] std::string_view readTextValue();
    /// An object that a packet has defined, or null. `flag` is 0; other values are reserved.
    [[nodiscard]] void* readReference(int flag);
    /// The type of the packet that defined what `readReference` gave last.
    [[nodiscard]] ioPacketType const* referencedType() const noexcept { return referencedType_; }
    /// Says which object the innermost packet has produced. It stays in place as long as something may refer to it:
    /// until the file ends if `packetIsNumbered`, otherwise until the packet's end.
    void definePacketObject(void* object) noexcept;
    [[nodiscard]] bool packetIsNumbered() const noexcept { return !open_.empty() && open_.back().number != noNumber; }
    /// Ends the reading as malformed: for packet types whose values do not make sense together.
    void refuse() noexcept { fail(ioStatus::malformed); }

    // For readers that keep a stack of their own: the steps that otherwise happen inside `readReference`.
    enum class Ending { plain, referred };
    /// Enters the packet that comes next and tells its type; null when the next thing is a value or an end.
    [[nodiscard]] ioPacketType* openPacket();
    /// Leaves the innermost packet, passing over what is left of it. `referred`: a reference to its object comes
    /// next, and is thereby read.
    [[nodiscard]] Ending closePacket();
    /// Lets `type` read the packet that was opened, and closes it.
    Ending readPacket(ioPacketType& type);
    /// The object of the packet that was closed as `referred`; null, and a fault, if it defined none.
    [[nodiscard]] void* referredObject();

    /// The type with that number in the file. Null when nobody reads it, or none has the number.
    [[nodiscard]] ioPacketType* numberedType(std::size_t number) const noexcept {
        return number < types_.size() ? types_[number] : nullptr;
    }
    class Cursor;

private:
    friend NX_API std::unique_ptr<ioReadContext> ioReadContextAlloc(ioBufferedStreamInput&, ioPacketRegistry&);

    static constexpr std::size_t noNumber = std::numeric_limits<std::size_t>::max();
    struct Object {
        void* address;  ///< null until its packet defines it
        ioPacketType const* type;
    };
    struct OpenPacket {
        Object object;
        std::size_t number;  ///< among `objects_`, or `noNumber`
    };

    ioReadContext(ioBufferedStreamInput& input, ioPacketRegistry& registry) : input_(input), registry_(registry) {}

    void fail(ioStatus status) noexcept;
    [[nodiscard]] bool ok() const noexcept { return status_ == ioStatus::ok; }
    /// Whether so many bytes are there; a fault if not.
    [[nodiscard]] bool need(std::size_t bytes);
    [[nodiscard]] unsigned char nextByte() const noexcept { return static_cast<unsigned char>(*input_.next()); }

    void readFileMark();
    void readPackets(ioClientReadContext& client);

    // What the inline functions leave to be done when the bytes are not the most usual ones.
    [[nodiscard]] int otherIntValue();
    [[nodiscard]] std::string_view otherTextValue();
    [[nodiscard]] ioPacketType* openOtherPacket();

    /// Reads the packets in front of the next value. False when no value follows.
    [[nodiscard]] bool comeToValue();
    [[nodiscard]] bool readNumber(ioFormat::Kind kind, std::uint64_t& number);
    [[nodiscard]] bool readRest(std::uint64_t& number);
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
    std::vector<ioPacketType*> types_;  ///< by number; null where there is no reader
    std::vector<Object> objects_;       ///< in the order in which their packets began
    Object closed_{};                   ///< what the packet closed last defined
    ioPacketType const* referencedType_ = nullptr;
    std::string text_;
    ioNameTable names_;
};

/// Reads the usual things of files in the fewest steps, as long as they lie whole in the buffer: names, packets without
/// a number, and their ends that are references. What is of another kind it leaves, and the context tells why.
///
/// While it exists nobody else reads from the context.
class ioReadContext::Cursor {
public:
    explicit Cursor(ioReadContext& context) noexcept
        : context_(context), at_(context.input_.next()), end_(at_ + context.input_.available()) {}
    Cursor(Cursor const&) = delete;
    Cursor& operator=(Cursor const&) = delete;
    ~Cursor() { context_.input_.advance(static_cast<std::size_t>(at_ - context_.input_.next())); }

    /// Whether there is enough to look at for a name and the packet behind it. What comes next needs it.
    [[nodiscard]] bool hasMore() const noexcept { return end_ - at_ >= lookAhead; }

    /// The first byte of what comes next.
    [[nodiscard]] unsigned char first() const noexcept { return byteAt(at_); }
    // Each is false, and moves nowhere, where something else comes. Texts are valid until the next call.
    /// A text that was named before.
    [[nodiscard]] bool name(std::string_view& name) noexcept;
    /// The packet that begins here, if it is one value and the end that is a reference.
    [[nodiscard]] bool packet(bool& value) noexcept;
    [[nodiscard]] bool packet(double& value) noexcept;
    [[nodiscard]] bool packet(std::string_view& value) noexcept;
    /// Enters the packet that begins here, with the number of things in it.
    [[nodiscard]] bool enter(std::size_t& size);
    /// Leaves the innermost packet, if it has an end that is a reference.
    [[nodiscard]] bool leave() noexcept;

private:
    static constexpr std::ptrdiff_t lookAhead = 2 + 2 + ioFormat::longestToken;

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

/// A context that reads from `input`; null when that is not open. Input and registry outlive it.
NX_API std::unique_ptr<ioReadContext> ioReadContextAlloc(ioBufferedStreamInput& input, ioPacketRegistry& registry);

#include "foundation/io/ioReadContextInline.h"
