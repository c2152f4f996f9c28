// Writes items as packets.
#pragma once

#include "foundation/io/ioClientWriteContext.h"
#include "foundation/ur/Reference.h"
#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"

namespace nxPLST {

/// Writes item references into the open packet of a context; an item's packet precedes its first reference.
///
/// For packet formats that contain items among other data; to write a file with one item, use `nxPLST::write`. The
/// items must live until the file ends. Trees of any depth. The context must outlive it; one thread at a time.
class NX_API WriteInterface : public ioClientWriteContext {
public:
    explicit WriteInterface(ioWriteContext& context) noexcept : ioClientWriteContext(context) {}

    /// Null writes a null reference.
    void writeItem(ur::Reference<Item const> item);
    void writeArray(ur::Reference<Array const> item);
    void writeBool(ur::Reference<Bool const> item);
    void writeDictionary(ur::Reference<Dictionary const> item);
    void writeDouble(ur::Reference<Double const> item);
    void writeString(ur::Reference<String const> item);

    /// The same with less time and space, for a tree that shares no item with other written data: items with one holder
    /// are then not remembered, and `isReferenceDefined` does not know them.
    void writeSeparateTree(ur::Reference<Item const> root);

private:
    class PacketWalk;
    /// Where references to the items of a tree may occur.
    enum class Sharing { withAnything, withinTree };

    void writeReferenceTo(Item const* item, Sharing sharing);
    void writeItemPacket(Item const* item, Sharing sharing);
};

}  // namespace nxPLST
