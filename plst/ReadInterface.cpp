// Reads items from packets.
#include "plst/ReadInterface.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <typeinfo>
#include <utility>
#include <vector>

#include "foundation/io/ioPacketRegistry.h"
#include "foundation/io/ioReadContext.h"
#include "plst/casts.h"
#include "plst/impl/packetNames.h"

namespace nxPLST {

using urString::CString;

/// Reads the packets of one kind of item through a reader.
class ReadInterface::PListPacket final : public ioPacketType {
public:
    using Operation = void (ReadInterface::*)();

    PListPacket(char const* name, ReadInterface* reader, Operation reads)
        : ioPacketType(name), reader_(reader), operation_(reads) {}

    void read(ioClientReadContext& /*client*/) override {
        if (reader_) (reader_->*operation_)();
    }

    /// Null when `type` reads something else than items.
    static PListPacket const* from(ioPacketType const* type) {
        return type && typeid(*type) == typeid(PListPacket) ? static_cast<PListPacket const*>(type) : nullptr;
    }
    [[nodiscard]] bool isFor(ReadInterface const& reader) const { return reader_ == &reader; }
    [[nodiscard]] Operation operation() const { return operation_; }

private:
    ReadInterface* reader_;
    Operation operation_;
};

/// Reads one item with all packets inside it. The containers that wait for their elements lie on a stack of its own,
/// so that the depth of a tree does not matter.
class ReadInterface::PacketWalk {
public:
    explicit PacketWalk(ReadInterface& reader) : reader_(reader), context_(reader.context()) {}

    /// The item that the next reference leads to.
    ur::Reference<Item> item() { return run(); }
    /// Reads the rest of the packet that was opened for `container`, and completes it.
    void fill(ur::Reference<Item> container) {
        fills_ = true;
        push(std::move(container));
        run();
    }

private:
    struct Container {
        ur::Reference<Item> item;
        std::size_t missing;
        std::size_t firstElement;  ///< of an array, among `elements_`
        CString key;               ///< of a dictionary: what the next item belongs to
    };

    ur::Reference<Item> run() {
        for (ur::Reference<Item> item;;) {
            if (!open_.empty() && open_.back().missing == 0) {
                item = finishInnermost();
                if (open_.empty() && fills_) return item;
                if (context_.closePacket() == ioReadContext::Ending::plain) continue;
            } else if (ioPacketType* const type = context_.openPacket()) {
                if (!readPacket(*type, item)) continue;
            } else {
                item = referenced(context_.readReference(0));
                if (!item && context_.getStatus() != 0) return nullptr;
            }
            if (open_.empty()) return item;
            add(std::move(item));
        }
    }

    /// Reads the packet that was opened, or makes its item the innermost container. True when a reference to it was
    /// read as well, which gives `item`.
    bool readPacket(ioPacketType& type, ur::Reference<Item>& item) {
        PListPacket const* const packet = PListPacket::from(&type);
        if (!packet || !packet->isFor(reader_)) {
            bool const referred = context_.readPacket(type) == ioReadContext::Ending::referred;
            if (referred) item = referenced(context_.referredObject());
            return referred;
        }
        PListPacket::Operation const operation = packet->operation();
        if (operation == &ReadInterface::readArrayPacket) return push(ur::make<Array>());
        if (operation == &ReadInterface::readDictionaryPacket) return push(ur::make<Dictionary>());
        (reader_.*operation)();
        if (context_.closePacket() == ioReadContext::Ending::plain) return false;
        item = reader_.items_.back();
        return true;
    }

    ur::Reference<Item> referenced(void* object) {
        if (!object) return nullptr;
        if (PListPacket::from(context_.referencedType())) return ur::Reference<Item>(static_cast<Item*>(object));
        context_.refuse();
        return nullptr;
    }

    bool push(ur::Reference<Item> container) {
        int const size = context_.readIntValue();
        if (size < 0) context_.refuse();
        open_.push_back({std::move(container), static_cast<std::size_t>(std::max(size, 0)), elements_.size(), {}});
        readKey();
        return false;
    }

    void readKey() {
        Container& innermost = open_.back();
        if (innermost.missing == 0 || innermost.item->type() != DictionaryType) return;
        innermost.key.assign(context_.readTextValue());
    }

    void add(ur::Reference<Item> item) {
        Container& innermost = open_.back();
        --innermost.missing;
        if (innermost.item->type() == ArrayType) {
            elements_.push_back(std::move(item));
        } else {
            insert(static_cast<Dictionary&>(*innermost.item).dictionary(), std::move(innermost.key), std::move(item));
            readKey();
        }
    }

    /// Writers put keys in ascending order, so the end is the place to try; a repeated key keeps the later value.
    static void insert(Dictionary::Map& entries, CString&& key, ur::Reference<Item> item) {
        auto const entry = entries.try_emplace(entries.end(), std::move(key));
        entry->second = std::move(item);
    }

    /// The innermost container, complete. Its elements waited outside until their number was known to be true.
    ur::Reference<Item> finishInnermost() {
        ur::Reference<Item> item = std::move(open_.back().item);
        if (item->type() == ArrayType) {
            auto const first = elements_.begin() + static_cast<std::ptrdiff_t>(open_.back().firstElement);
            static_cast<Array&>(*item).array().assign(std::move_iterator(first), std::move_iterator(elements_.end()));
            elements_.erase(first, elements_.end());
        }
        open_.pop_back();
        reader_.complete(item);
        return item;
    }

    ReadInterface& reader_;
    ioReadContext& context_;
    bool fills_ = false;
    std::vector<Container> open_;
    std::vector<ur::Reference<Item>> elements_;  ///< of all open arrays, one array's behind the other's
};

ReadInterface::ReadInterface(ioReadContext& context) : ioClientReadContext(context) {}
ReadInterface::ReadInterface(ReadInterface const& other) = default;
ReadInterface::~ReadInterface() = default;

void ReadInterface::registerTypes(ioPacketRegistry& registry, ReadInterface* reader) {
    auto const add = [&](Type type, PListPacket::Operation operation) {
        registry.supportedType(std::make_unique<PListPacket>(impl::packetNames[type], reader, operation));
    };
    add(BoolType, &ReadInterface::readBoolPacket);
    add(DoubleType, &ReadInterface::readDoublePacket);
    add(StringType, &ReadInterface::readStringPacket);
    add(ArrayType, &ReadInterface::readArrayPacket);
    add(DictionaryType, &ReadInterface::readDictionaryPacket);
}

ur::Reference<Item> ReadInterface::readItem() { return PacketWalk(*this).item(); }
ur::Reference<Array> ReadInterface::readArray() { return asArray(readItem()); }
ur::Reference<Bool> ReadInterface::readBool() { return asBool(readItem()); }
ur::Reference<Dictionary> ReadInterface::readDictionary() { return asDictionary(readItem()); }
ur::Reference<Double> ReadInterface::readDouble() { return asDouble(readItem()); }
ur::Reference<String> ReadInterface::readString() { return asString(readItem()); }

void ReadInterface::readBoolPacket() { complete(ur::make<Bool>(context().readBoolValue())); }
void ReadInterface::readDoublePacket() { complete(ur::make<Double>(context().readDoubleValue())); }
void ReadInterface::readStringPacket() { complete(ur::make<String>(CString(context().readTextValue()))); }
void ReadInterface::readArrayPacket() { PacketWalk(*this).fill(ur::make<Array>()); }
void ReadInterface::readDictionaryPacket() { PacketWalk(*this).fill(ur::make<Dictionary>()); }

void ReadInterface::complete(ur::Reference<Item> item) {
    context().definePacketObject(item.get());
    items_.push_back(std::move(item));
}

}  // namespace nxPLST
