// Writes items as packets.
#include "plst/WriteInterface.h"

#include <array>
#include <utility>
#include <vector>

#include "foundation/io/ioWriteContext.h"
#include "plst/impl/packetNames.h"

namespace nxPLST {
namespace {

/// Writes an item's packet with all packets inside it. The containers that are being written lie on a stack of its
/// own, so that the depth of a tree does not matter.
class PacketWalk {
public:
    explicit PacketWalk(ioWriteContext& context) : context_(context), hadObjects_(context.hasObjects()) {
        types_.fill(ioPacketTypeId::none);
    }

    void write(Item const& root) {
        begin(root, Known::perhaps);
        while (!open_.empty() && context_.getStatus() == 0) {
            Container& innermost = open_.back();
            if (innermost.missing > 0) {
                writeChild(next(innermost));
            } else {
                endInnermost();
            }
        }
    }

private:
    enum class Known { perhaps, no };
    struct Container {
        Item const* item;
        std::size_t missing;
        Dictionary::Map::const_iterator entry;  ///< of a dictionary: what comes next
    };

    /// Whether the file may hold the item's packet already. An item with one holder has been met nowhere else, unless
    /// somebody wrote it by itself before.
    [[nodiscard]] Known known(Item const& item) const {
        return item.referenceCount() > 1 || hadObjects_ ? Known::perhaps : Known::no;
    }

    Item const* next(Container& container) {
        if (container.item->type() == ArrayType) {
            auto const& children = static_cast<Array const*>(container.item)->array();
            return children[children.size() - container.missing--].get();
        }
        auto const& [key, child] = *container.entry++;
        --container.missing;
        context_.writeTextValue(key);
        return child.get();
    }

    void writeChild(Item const* child) {
        if (!child) return context_.writeReference(nullptr, 0);
        Known const before = known(*child);
        if (before == Known::perhaps && context_.isReferenceDefined(child)) return context_.writeReference(child, 0);
        if (begin(*child, before) == Begun::container) return;
        context_.writeReference(child, 0);
    }

    enum class Begun { container, complete };

    Begun begin(Item const& item, Known known) {
        switch (item.type()) {
            case BoolType:
                start(item, known);
                context_.writeBoolValue(static_cast<Bool const&>(item).value());
                break;
            case DoubleType:
                start(item, known);
                context_.writeDoubleValue(static_cast<Double const&>(item).value());
                break;
            case StringType:
                start(item, known);
                context_.writeTextValue(static_cast<String const&>(item).value());
                break;
            case ArrayType:
                start(item, known);
                open(item, static_cast<Array const&>(item).array().size(), {});
                return Begun::container;
            case DictionaryType: {
                start(item, known);
                auto const& entries = static_cast<Dictionary const&>(item).dictionary();
                open(item, entries.size(), entries.begin());
                return Begun::container;
            }
            default: return Begun::complete;
        }
        context_.endPacket();
        return Begun::complete;
    }

    void start(Item const& item, Known known) {
        ioPacketTypeId& type = types_[static_cast<std::size_t>(item.type())];
        if (type == ioPacketTypeId::none) type = context_.typeId(impl::packetNames[item.type()]);
        if (known == Known::no) {
            context_.startNewPacket(type, &item);
        } else {
            context_.startPacket(type, &item);
        }
    }

    void open(Item const& item, std::size_t size, Dictionary::Map::const_iterator entry) {
        context_.writeIntValue(static_cast<int>(size));
        open_.push_back({&item, size, entry});
    }

    void endInnermost() {
        Item const* const item = open_.back().item;
        open_.pop_back();
        context_.endPacket();
        if (!open_.empty()) context_.writeReference(item, 0);
    }

    ioWriteContext& context_;
    bool hadObjects_;
    std::array<ioPacketTypeId, impl::packetNames.size()> types_;
    std::vector<Container> open_;
};

}  // namespace

void WriteInterface::writeItem(ur::Reference<Item const> item) {
    if (item && !context().isReferenceDefined(item.get())) writeItemPacket(item.get());
    context().writeReference(item.get(), 0);
}

void WriteInterface::writeItemPacket(Item const* item) { PacketWalk(context()).write(*item); }

void WriteInterface::writeArray(ur::Reference<Array const> item) { writeItem(std::move(item)); }
void WriteInterface::writeBool(ur::Reference<Bool const> item) { writeItem(std::move(item)); }
void WriteInterface::writeDictionary(ur::Reference<Dictionary const> item) { writeItem(std::move(item)); }
void WriteInterface::writeDouble(ur::Reference<Double const> item) { writeItem(std::move(item)); }
void WriteInterface::writeString(ur::Reference<String const> item) { writeItem(std::move(item)); }

}  // namespace nxPLST
