// Reading the packets of items without recursion over the depth of the tree.
#pragma once

#include <algorithm>
#include <concepts>
#include <iterator>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "foundation/io/ioReadContext.h"
#include "plst/ReadInterface.h"
#include "plst/impl/packetNames.h"

namespace nxPLST {

namespace impl {

template <class Kind, class Value>
ur::Reference<Item> makeItem(Value value) {
    if constexpr (std::same_as<Value, std::string_view>) {
        return ur::make<Kind>(urString::CString(value));
    } else {
        return ur::make<Kind>(value);
    }
}

/// The item that the payload of a packet of this kind makes.
inline ur::Reference<Item> readScalar(ioReadContext& context, Type kind) {
    switch (kind) {
        case BoolType: return makeItem<Bool>(context.readBoolValue());
        case DoubleType: return makeItem<Double>(context.readDoubleValue());
        default: return makeItem<String>(context.readTextValue());
    }
}

}  // namespace impl

/// Reads the packets of one kind of item through a reader.
class ReadInterface::PListPacket final : public ioPacketType {
public:
    using Operation = void (ReadInterface::*)();

    PListPacket(Type kind, ReadInterface* reader, Operation operation)
        : ioPacketType(impl::packetNames[kind]), reader_(reader), operation_(operation), kind_(kind) {}

    void read(ioClientReadContext& /*client*/) override {
        if (reader_) (reader_->*operation_)();
    }

    /// Null when `type` reads something else than items.
    static PListPacket const* from(ioPacketType const* type) {
        return type && typeid(*type) == typeid(PListPacket) ? static_cast<PListPacket const*>(type) : nullptr;
    }
    [[nodiscard]] bool isFor(ReadInterface const& reader) const { return reader_ == &reader; }
    [[nodiscard]] Type kind() const { return kind_; }

private:
    ReadInterface* reader_;
    Operation operation_;
    Type kind_;
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
        reader_.complete(run());
    }

private:
    struct Container {
        ur::Reference<Item> item;
        std::size_t missing;
        std::size_t firstElement;  ///< of an array, among `elements_`
        urString::CString key;     ///< of a dictionary: what the next item belongs to, if `keyIsRead`
        bool keyIsRead;
    };

    ur::Reference<Item> run() {
        for (ur::Reference<Item> item;;) {
            if (!open_.empty()) readSmallItems();
            if (!open_.empty() && open_.back().missing == 0) {
                item = finishInnermost();
                if (open_.empty() && fills_) return item;
                if (!close(item)) continue;
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

    /// Reads children of the innermost container as long as they are scalars that nothing else refers to: the most
    /// usual ones, in the fewest steps.
    void readSmallItems() {
        Container& innermost = open_.back();
        if (innermost.item->type() == ArrayType) {
            readSmallElements(innermost);
        } else {
            readSmallEntries(innermost, static_cast<Dictionary&>(*innermost.item).dictionary());
        }
    }

    void readSmallElements(Container& array) {
        for (ur::Reference<Item> item; array.missing > 0 && readSmallItem(item); --array.missing) {
            elements_.push_back(std::move(item));
        }
    }

    void readSmallEntries(Container& dictionary, Dictionary::Map& entries) {
        constexpr std::size_t believed = 8;  // the rest of the announced entries gets room as they come
        while (dictionary.missing > 0 && !dictionary.keyIsRead) {
            std::string_view const key = context_.readTextValue();
            if (entries.empty()) entries.reserve(std::min(dictionary.missing, believed));
            ur::Reference<Item> item;
            if (readSmallItem(item)) {
                insert(entries, urString::CString(key), std::move(item));
                --dictionary.missing;
            } else {
                dictionary.key = urString::CString(key);
                dictionary.keyIsRead = true;
            }
        }
    }

    bool readSmallItem(ur::Reference<Item>& item) {
        PListPacket const* const packet = PListPacket::from(context_.nextPlainPacket());
        if (!packet || !packet->isFor(reader_)) return false;
        switch (packet->kind()) {
            case BoolType: return readSmallItem<Bool, bool>(item);
            case DoubleType: return readSmallItem<Double, double>(item);
            case StringType: return readSmallItem<String, std::string_view>(item);
            default: return false;
        }
    }

    template <class Kind, class Value>
    bool readSmallItem(ur::Reference<Item>& item) {
        Value value{};
        if (!context_.readReferredPacket(value)) return false;
        item = impl::makeItem<Kind>(value);
        return true;
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
        switch (packet->kind()) {
            case ArrayType: push(ur::make<Array>()); return false;
            case DictionaryType: push(ur::make<Dictionary>()); return false;
            default: item = impl::readScalar(context_, packet->kind());
        }
        return close(item);
    }

    /// Leaves the packet of an item. True when a reference to it was read as well.
    bool close(ur::Reference<Item> const& item) {
        if (context_.packetIsNumbered()) reader_.complete(item);
        return context_.closePacket() == ioReadContext::Ending::referred;
    }

    ur::Reference<Item> referenced(void* object) {
        if (!object) return nullptr;
        if (PListPacket::from(context_.referencedType())) return ur::Reference<Item>(static_cast<Item*>(object));
        context_.refuse();
        return nullptr;
    }

    void push(ur::Reference<Item> container) {
        int const size = context_.readIntValue();
        if (size < 0) context_.refuse();
        open_.push_back(
            {std::move(container), static_cast<std::size_t>(std::max(size, 0)), elements_.size(), {}, false});
    }

    void add(ur::Reference<Item> item) {
        Container& innermost = open_.back();
        --innermost.missing;
        if (innermost.item->type() == ArrayType) {
            elements_.push_back(std::move(item));
        } else {
            insert(static_cast<Dictionary&>(*innermost.item).dictionary(), std::move(innermost.key), std::move(item));
            innermost.keyIsRead = false;
        }
    }

    /// Writers put keys in ascending order, so the end is the place to try; a repeated key keeps the later value.
    static void insert(Dictionary::Map& entries, urString::CString&& key, ur::Reference<Item> item) {
        std::size_t const before = entries.size();
        auto const entry = entries.try_emplace(entries.end(), std::move(key), std::move(item));
        if (entries.size() == before) entry->second = std::move(item);
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
        return item;
    }

    ReadInterface& reader_;
    ioReadContext& context_;
    bool fills_ = false;
    std::vector<Container> open_;
    std::vector<ur::Reference<Item>> elements_;  ///< of all open arrays, one array's behind the other's
};

}  // namespace nxPLST
