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

/// Writes item references into the open packet of a context, each item's own packet before its first reference.
///
/// For packet formats that hold items among other things; a whole file of one item is written by `nxPLST::write`.
/// The items must live until the file ends. Trees of any depth. Its context outlives it; one thread at a time.
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

    /// The same in less time and space, for a tree that shares no item with what else is written: items with one holder
    /// are then not remembered, and `isReferenceDefined` does not know them.
    void writeSeparateTree(ur::Reference<Item const> root);

private:
    class PacketWalk;
    /// What items of a tree may be referred to from.
    enum class Sharing { withAnything, withinTree };

    void writeReferenceTo(Item const* item, Sharing sharing);
    void writeItemPacket(Item const* item, Sharing sharing);
};

}  // namespace nxPLST
