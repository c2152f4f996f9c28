// Reads items from packets without recursion over the depth of the tree.
#include "plst/ReadInterface.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <iterator>
#include <memory>
#include <string_view>
#include <typeinfo>
#include <utility>

#include "foundation/io/ioPacketRegistry.h"
#include "foundation/io/ioReadContext.h"
#include "plst/casts.h"
#include "plst/impl/ItemSource.h"
#include "plst/impl/ScratchStack.h"
#include "plst/impl/packetNames.h"

namespace nxPLST {

namespace {

/// The item of a packet of this kind.
ur::Reference<Item> scalarFrom(ioReadContext& context, Type kind) {
    switch (kind) {
        case BoolType: return ur::make<Bool>(context.readBoolValue());
        case DoubleType: return ur::make<Double>(context.readDoubleValue());
        default: return ur::make<String>(urString::CString(context.readTextValue()));
    }
}

}  // namespace

/// Reads the packets of one kind of item through a reader.
class ReadInterface::PListPacket final : public ioPacketType {
public:
    using Operation = void (ReadInterface::*)();

    PListPacket(Type kind, ReadInterface* reader, Operation operation)
        : ioPacketType(impl::packetNames[kind]), reader_(reader), operation_(operation), kind_(kind) {}

    void read(ioClientReadContext& /*client*/) override {
        if (reader_) (reader_->*operation_)();
    }

    /// Null when `type` does not read items.
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

/// Reads one item with all nested packets. Keeps unfinished containers on its own stack, so that the depth of a tree
/// does not matter.
class ReadInterface::PacketWalk {
public:
    explicit PacketWalk(ReadInterface& reader) : reader_(reader), context_(reader.context()) { kinds_.fill(noKind); }

    /// The item of the next reference.
    ur::Reference<Item> item() { return run(); }
    /// Reads the rest of the packet that was opened for `container`, and completes it.
    void fill(ur::Reference<Item> container) {
        outermost_ = 1;
        push(std::move(container));
        reader_.complete(run());
    }

private:
    struct Container {
        ur::Reference<Item> item;
        std::size_t missing;
        ur::Reference<Item>* value;  ///< in a dictionary: the place of the next item, after its key was read
        bool isDictionary;

        [[nodiscard]] bool needsKey() const { return isDictionary && !value; }
        /// Makes a place for the next item. Writers sort keys; the later item of a repeated key stays.
        void takeKey(std::string_view key) { value = &static_cast<Dictionary&>(*item).dictionary().ascending(key); }
    };

    ur::Reference<Item> run() {
        for (ur::Reference<Item> item;;) {
            readUsual();
            if (!open_.empty() && open_.top().missing == 0) {
                item = finishInnermost();
                if (open_.size() < outermost_) return item;
                if (!close(item)) continue;
            } else if (!open_.empty() && open_.top().needsKey()) {
                open_.top().takeKey(context_.readTextValue());
                continue;
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

    /// The outcome of reading the next element or member.
    enum class Step {
        other,    ///< it is not a usual one
        taken,    ///< it was read completely
        entered,  ///< it is now the innermost container
    };

    /// Reads on quickly inside the outermost container as long as the bytes have the usual form.
    void readUsual() {
        ioReadContext::Cursor cursor(context_);
        for (Step step = Step::taken; step != Step::other && !open_.empty();) {
            Container& innermost = open_.top();
            step = innermost.isDictionary ? readEntries(cursor, innermost) : readElements(cursor, innermost);
            if (step == Step::taken) step = finishUsual(cursor);
        }
    }

    // Both are `taken` when the container is complete.
    Step readElements(ioReadContext::Cursor& cursor, Container& array) {
        auto& elements = static_cast<Array&>(*array.item).array();
        for (; array.missing > 0; --array.missing) {
            Step const step = readChild(cursor, [&](auto item) { elements.push_back(std::move(item)); });
            if (step != Step::taken) return step;
        }
        return Step::taken;
    }

    Step readEntries(ioReadContext::Cursor& cursor, Container& dictionary) {
        for (; dictionary.missing > 0; --dictionary.missing) {
            if (std::string_view key; !dictionary.value) {
                if (!cursor.name(key)) return Step::other;
                dictionary.takeKey(key);
            }
            Step const step = readChild(cursor, [&](auto item) { *dictionary.value = std::move(item); });
            if (step != Step::taken) return step;
            dictionary.value = nullptr;
        }
        return Step::taken;
    }

    template <class Take>
    Step readChild(ioReadContext::Cursor& cursor, Take take) {
        switch (kinds_[cursor.first()]) {
            case BoolType: return readScalar<Bool, bool>(cursor, take);
            case DoubleType: return readScalar<Double, double>(cursor, take);
            case StringType: return readScalar<String, std::string_view>(cursor, take);
            case ArrayType: return enter<Array>(cursor);
            case DictionaryType: return enter<Dictionary>(cursor);
            default: return learn(cursor.first()) ? readChild(cursor, take) : Step::other;
        }
    }

    template <class Kind, class Value, class Take>
    Step readScalar(ioReadContext::Cursor& cursor, Take take) {
        Value value{};
        if (!cursor.packet(value)) return Step::other;
        take(items_.make<Kind>(value));
        return Step::taken;
    }

    template <class Kind>
    Step enter(ioReadContext::Cursor& cursor) {
        std::size_t size = 0;
        if (!cursor.enter(size)) return Step::other;
        push(items_.make<Kind>(), size);
        return Step::entered;
    }

    Step finishUsual(ioReadContext::Cursor& cursor) {
        bool const isUsual = open_.size() > 1 && !context_.packetIsNumbered() && cursor.leave();
        if (!isUsual) return Step::other;
        add(finishInnermost());
        return Step::taken;
    }

    /// Records the kind of the items whose packets begin with that byte. False when it begins something else.
    [[gnu::noinline]] bool learn(unsigned char first) {
        if (ioFormat::kindOf(first) != ioFormat::plainPacket) return false;
        unsigned const number = ioFormat::numberOf(first);
        auto const* const type = number == ioFormat::longNumber ? nullptr : context_.numberedType(number);
        PListPacket const* const packet = PListPacket::from(type);
        if (!packet || !packet->isFor(reader_)) return false;
        kinds_[first] = static_cast<unsigned char>(packet->kind());
        return true;
    }

    /// Reads the opened packet, or makes its item the innermost container. True when a reference to it was read as
    /// well, which sets `item`.
    bool readPacket(ioPacketType& type, ur::Reference<Item>& item) {
        PListPacket const* const packet = PListPacket::from(&type);
        if (!packet || !packet->isFor(reader_)) {
            bool const referred = context_.readPacket(type) == ioReadContext::Ending::referred;
            if (referred) item = referenced(context_.referredObject());
            return referred;
        }
        switch (packet->kind()) {
            case ArrayType: push(items_.make<Array>()); return false;
            case DictionaryType: push(items_.make<Dictionary>()); return false;
            default: item = scalarFrom(context_, packet->kind());
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
        push(std::move(container), static_cast<std::size_t>(std::max(size, 0)));
    }

    void push(ur::Reference<Item> container, std::size_t size) {
        constexpr std::size_t believed = 8;  // reserves at most this many; more room is made as elements arrive
        bool const isDictionary = container->type() == DictionaryType;
        if (isDictionary) {
            static_cast<Dictionary&>(*container).dictionary().reserve(std::min(size, believed));
        } else {
            static_cast<Array&>(*container).array().reserve(std::min(size, believed));
        }
        open_.push(std::move(container), size, nullptr, isDictionary);
    }

    void add(ur::Reference<Item> item) {
        Container& innermost = open_.top();
        --innermost.missing;
        if (innermost.isDictionary) {
            *std::exchange(innermost.value, nullptr) = std::move(item);
        } else {
            static_cast<Array&>(*innermost.item).array().push_back(std::move(item));
        }
    }

    /// Removes and returns the innermost container, which is complete.
    ur::Reference<Item> finishInnermost() {
        Container& innermost = open_.top();
        if (!innermost.isDictionary) static_cast<Array&>(*innermost.item).array().shrink_to_fit();
        ur::Reference<Item> item = std::move(innermost.item);
        open_.pop();
        return item;
    }

    static constexpr unsigned char noKind = 0xFF;

    ReadInterface& reader_;
    ioReadContext& context_;
    impl::ItemSource items_;
    std::array<unsigned char, 256> kinds_;  ///< by the first byte of their packets; `noKind` if unknown
    std::size_t outermost_ = 0;             ///< the number of containers that stay open until the end
    impl::ScratchStack<Container> open_;
};

ReadInterface::ReadInterface(ioReadContext& context) : ioClientReadContext(context) {}
ReadInterface::ReadInterface(ReadInterface const& other) = default;
ReadInterface::~ReadInterface() = default;

void ReadInterface::registerTypes(ioPacketRegistry& registry, ReadInterface* reader) {
    auto const add = [&](Type kind, PListPacket::Operation operation) {
        registry.supportedType(std::make_unique<PListPacket>(kind, reader, operation));
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

void ReadInterface::readBoolPacket() { complete(scalarFrom(context(), BoolType)); }
void ReadInterface::readDoublePacket() { complete(scalarFrom(context(), DoubleType)); }
void ReadInterface::readStringPacket() { complete(scalarFrom(context(), StringType)); }
void ReadInterface::readArrayPacket() { PacketWalk(*this).fill(ur::make<Array>()); }
void ReadInterface::readDictionaryPacket() { PacketWalk(*this).fill(ur::make<Dictionary>()); }

void ReadInterface::complete(ur::Reference<Item> item) {
    context().definePacketObject(item.get());
    items_.push_back(std::move(item));
}

}  // namespace nxPLST
