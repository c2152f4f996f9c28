// Writes items as packets.
#include "plst/WriteInterface.h"

#include <array>
#include <utility>
#include <vector>

#include "foundation/io/ioWriteContext.h"
#include "plst/impl/packetNames.h"

namespace nxPLST {

/// Writes an item's packet with all packets inside it. The containers that are being written lie on a stack of its
/// own, so that the depth of a tree does not matter.
class WriteInterface::PacketWalk {
public:
    PacketWalk(ioWriteContext& context, Sharing sharing) : context_(context), sharing_(sharing) {
        types_.fill(ioPacketTypeId::none);
    }

    /// Requires: the root's packet has not been written.
    void write(Item const& root) {
        begin(root, &root);
        while (!open_.empty() && context_.getStatus() == 0) {
            bool const isComplete = open_.back().item->type() == ArrayType ? writeElements() : writeEntries();
            if (!isComplete) continue;
            open_.pop_back();
            if (!open_.empty()) context_.endReferredPacket();
        }
        context_.endPacket();
    }

private:
    struct Container {
        Item const* item;
        std::size_t written;                    ///< of an array's elements
        Dictionary::Map::const_iterator entry;  ///< of a dictionary: what comes next
    };
    enum class Written { complete, opened };

    // Both write children of the innermost container, up to one that has children itself. True after the last one.
    bool writeElements() {
        Container& innermost = open_.back();
        auto const& elements = static_cast<Array const*>(innermost.item)->array();
        while (innermost.written < elements.size()) {
            if (writeChild(elements[innermost.written++].get()) == Written::opened) return false;
        }
        return true;
    }

    bool writeEntries() {
        Container& innermost = open_.back();
        auto const end = static_cast<Dictionary const*>(innermost.item)->dictionary().end();
        while (innermost.entry != end) {
            auto const& [key, child] = *innermost.entry;
            ++innermost.entry;
            context_.writeNameValue(key);
            if (writeChild(child.get()) == Written::opened) return false;
        }
        return true;
    }

    /// `opened` when the child has become the innermost container.
    Written writeChild(Item const* child) {
        if (child && child->referenceCount() == 1 && sharing_ == Sharing::withinTree) return writeUnshared(*child);
        if (child && !context_.isReferenceDefined(child)) {
            if (!begin(*child, child)) return Written::opened;
            context_.endReferredPacket();
        } else {
            context_.writeReference(child, 0);
        }
        return Written::complete;
    }

    Written writeUnshared(Item const& item) {
        auto const write = [&](auto value) { context_.writeReferredPacket(typeOf(item), value); };
        if (visitScalar(item, write)) return Written::complete;
        begin(item, nullptr);
        return Written::opened;
    }

    /// Begins the packet and writes the payload, of a container only its size. True when the payload is complete.
    bool begin(Item const& item, void const* object) {
        auto const start = [&](auto value) {
            context_.startPacket(typeOf(item), object);
            context_.writeValue(value);
        };
        if (visitScalar(item, start)) return true;
        if (item.type() == ArrayType) {
            auto const size = static_cast<Array const&>(item).array().size();
            start(static_cast<int>(size));
            open_.push_back({&item, 0, {}});
        } else if (item.type() == DictionaryType) {
            auto const& entries = static_cast<Dictionary const&>(item).dictionary();
            start(static_cast<int>(entries.size()));
            open_.push_back({&item, 0, entries.begin()});
        } else {
            context_.writeReference(&item, 0);  // an item of no known kind has no packet: the reference is refused
        }
        return false;
    }

    /// False when the item has children, or is of no kind that can be written.
    template <class Visit>
    static bool visitScalar(Item const& item, Visit visit) {
        switch (item.type()) {
            case BoolType: visit(static_cast<Bool const&>(item).value()); return true;
            case DoubleType: visit(static_cast<Double const&>(item).value()); return true;
            case StringType: visit(static_cast<String const&>(item).value().view()); return true;
            default: return false;
        }
    }

    ioPacketTypeId typeOf(Item const& item) {
        ioPacketTypeId& type = types_[static_cast<std::size_t>(item.type())];
        if (type == ioPacketTypeId::none) type = context_.typeId(impl::packetNames[item.type()]);
        return type;
    }

    ioWriteContext& context_;
    Sharing sharing_;
    std::array<ioPacketTypeId, impl::packetNames.size()> types_;
    std::vector<Container> open_;
};

void WriteInterface::writeItem(ur::Reference<Item const> item) { writeReferenceTo(item.get(), Sharing::withAnything); }
void WriteInterface::writeSeparateTree(ur::Reference<Item const> root) {
    writeReferenceTo(root.get(), Sharing::withinTree);
}

void WriteInterface::writeReferenceTo(Item const* item, Sharing sharing) {
    if (item && !context().isReferenceDefined(item)) writeItemPacket(item, sharing);
    context().writeReference(item, 0);
}

void WriteInterface::writeItemPacket(Item const* item, Sharing sharing) { PacketWalk(context(), sharing).write(*item); }

void WriteInterface::writeArray(ur::Reference<Array const> item) { writeItem(std::move(item)); }
void WriteInterface::writeBool(ur::Reference<Bool const> item) { writeItem(std::move(item)); }
void WriteInterface::writeDictionary(ur::Reference<Dictionary const> item) { writeItem(std::move(item)); }
void WriteInterface::writeDouble(ur::Reference<Double const> item) { writeItem(std::move(item)); }
void WriteInterface::writeString(ur::Reference<String const> item) { writeItem(std::move(item)); }

}  // namespace nxPLST
