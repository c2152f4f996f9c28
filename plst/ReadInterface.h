// Reads items from packets.
#pragma once

#include <deque>

#include "foundation/io/ioClientReadContext.h"
#include "foundation/ur/Reference.h"
#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"

class ioPacketRegistry;

namespace nxPLST {

/// Reads item references from the innermost packet of a context.
///
/// For packet formats that contain items among other data; to read a file from `nxPLST::write`, use `nxPLST::read`.
/// Holds every item that it has created, so that later references find them; a copy shares them. Trees of any depth.
/// The context must outlive it; one thread at a time.
class NX_API ReadInterface : public ioClientReadContext {
public:
    explicit ReadInterface(ioReadContext& context);
    ReadInterface(ReadInterface const& other);
    ReadInterface& operator=(ReadInterface const&) = delete;
    ~ReadInterface() override;

    /// Null for a null reference and after a fault. A reference to an object that is not an item is a fault.
    [[nodiscard]] ur::Reference<Item> readItem();
    // The same; null when the item is of another class.
    [[nodiscard]] ur::Reference<Array> readArray();
    [[nodiscard]] ur::Reference<Bool> readBool();
    [[nodiscard]] ur::Reference<Dictionary> readDictionary();
    [[nodiscard]] ur::Reference<Double> readDouble();
    [[nodiscard]] ur::Reference<String> readString();

    /// Adds the packet types of the five kinds of items, which `reader` reads. `reader` may be null in a registry used
    /// only for writing; otherwise it must live as long as the registry is in use.
    static void registerTypes(ioPacketRegistry& registry, ReadInterface* reader);

private:
    class PListPacket;
    class PacketWalk;

    void readBoolPacket();
    void readDoublePacket();
    void readStringPacket();
    void readArrayPacket();
    void readDictionaryPacket();
    void complete(ur::Reference<Item> item);

    std::deque<ur::Reference<Item>> items_;  ///< in the order in which their packets end
};

}  // namespace nxPLST
