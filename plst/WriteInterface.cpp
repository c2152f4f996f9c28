// Writes items as packets.
#include "plst/WriteInterface.h"

#include <array>
#include <string_view>
#include <utility>

#include "foundation/io/ioWriteContext.h"
#include "plst/impl/ScratchStack.h"
#include "plst/impl/packetNames.h"
#include "plst/visit.h"

namespace nxPLST {

/// Writes an item's packet with all nested packets. Keeps unfinished containers on its own stack, so that the depth of
/// a tree does not matter.
class WriteInterface::PacketWalk {
public:
    PacketWalk(ioWriteContext& context, Sharing sharing) : context_(context), sharing_(sharing) {
        types_.fill(ioPacketTypeId::none);
    }

    /// Requires: the root's packet is not written yet.
    void write(Item const& root) {
        begin(root, &root);
        while (!open_.empty() && context_.getStatus() == 0) {
            if (sharing_ == Sharing::withinTree) writeUsual();
            writeNext();
        }
        context_.endPacket();
    }

private:
    /// The remaining children of an open container.
    struct Container {
        ur::Reference<Item> const* element = nullptr;
        ur::Reference<Item> const* lastElement = nullptr;
        Dictionary::Map::const_iterator entry;
        Dictionary::Map::const_iterator lastEntry;

        explicit Container(Array const& array)
            : element(array.array().data()), lastElement(element + array.array().size()) {}
        explicit Container(Dictionary const& dictionary)
            : entry(dictionary.dictionary().begin()), lastEntry(dictionary.dictionary().end()) {}

        [[nodiscard]] bool atEnd() const { return element == lastElement && entry == lastEntry; }
    };

    /// The outcome of writing a child.
    enum class Step {
        other,    ///< it is not a usual one, or of an unknown kind
        written,  ///< it is complete
        entered,  ///< it is now the innermost container
    };

    /// Writes the next child of the innermost container, or its end.
    void writeNext() {
        Container& innermost = open_.top();
        if (innermost.atEnd()) {
            open_.pop();
            if (!open_.empty()) context_.endReferredPacket();
        } else if (innermost.element) {
            writeChild(innermost.element++->get());
        } else {
            auto const& [key, child] = *innermost.entry++;
            context_.writeNameValue(key);
            writeChild(child.get());
        }
    }

    // The usual case: items with one holder and short texts ---------------------------------------------------------

    /// Writes on quickly inside the root as long as the children are usual and the buffer has room.
    void writeUsual() {
        ioWriteContext::Cursor cursor(context_);
        for (Step step = Step::written; step != Step::other;) {
            Container& innermost = open_.top();
            step = innermost.element ? writeElements(cursor, innermost) : writeEntries(cursor, innermost);
            if (step == Step::written) step = finishUsual(cursor);
        }
    }

    // Both are `written` when no child is left.
    Step writeElements(ioWriteContext::Cursor& cursor, Container& array) {
        while (array.element != array.lastElement) {
            Item const* const child = array.element++->get();
            Step const step = writeUsual(cursor, child, [] {});
            if (step == Step::other) --array.element;
            if (step != Step::written) return step;
        }
        return Step::written;
    }

    Step writeEntries(ioWriteContext::Cursor& cursor, Container& dictionary) {
        while (dictionary.entry != dictionary.lastEntry) {
            std::string_view const key = dictionary.entry->first;
            if (key.size() > cursor.longestText) return Step::other;
            Item const* const child = dictionary.entry++->second.get();
            Step const step = writeUsual(cursor, child, [&] { cursor.name(key); });
            if (step == Step::other) --dictionary.entry;
            if (step != Step::written) return step;
        }
        return Step::written;
    }

    /// Writes the name before the child, if there is one.
    template <class Name>
    Step writeUsual(ioWriteContext::Cursor& cursor, Item const* child, Name name) {
        if (!cursor.hasRoom() || !child || child->referenceCount() > 1) return Step::other;
        return visit(
            *child, [&](Bool const& truth) { return writeScalar<BoolType>(cursor, truth.value(), name); },
            [&](Double const& number) { return writeScalar<DoubleType>(cursor, number.value(), name); },
            [&](String const& text) { return writeScalar<StringType>(cursor, text.value().view(), name); },
            [&](Array const& array) { return enter<ArrayType>(cursor, array, name); },
            [&](Dictionary const& dictionary) { return enter<DictionaryType>(cursor, dictionary, name); });
    }

    template <Type kind, class Value, class Name>
    Step writeScalar(ioWriteContext::Cursor& cursor, Value value, Name name) {
        unsigned char const first = firstByteOf(kind);
        if (first == 0 || !isUsual(value)) return Step::other;
        name();
        cursor.packet(first, value);
        return Step::written;
    }

    template <Type kind, class Kind, class Name>
    Step enter(ioWriteContext::Cursor& cursor, Kind const& container, Name name) {
        unsigned char const first = firstByteOf(kind);
        if (first == 0) return Step::other;
        name();
        cursor.enter(first, container.size());
        open_.push(container);
        return Step::entered;
    }

    static bool isUsual(std::string_view text) {
        return text.size() <= ioWriteContext::Cursor::longestText && text.find('\0') == std::string_view::npos;
    }
    static bool isUsual(double /*value*/) { return true; }

    Step finishUsual(ioWriteContext::Cursor& cursor) {
        if (open_.size() == 1 || !cursor.hasRoom()) return Step::other;
        cursor.leave();
        open_.pop();
        return Step::written;
    }

    /// The first byte of the packet of an item with one holder; 0 if the packet has no such simple form.
    unsigned char firstByteOf(Type kind) {
        unsigned char& first = firstBytes_[static_cast<std::size_t>(kind)];
        if (first == 0) [[unlikely]]
            first = context_.firstByteOf(typeOf(kind));
        return first;
    }

    // Everything else ----------------------------------------------------------------------------------------------

    void writeChild(Item const* child) {
        if (child && child->referenceCount() == 1 && sharing_ == Sharing::withinTree) return writeUnshared(*child);
        if (!child || context_.isReferenceDefined(child)) return context_.writeReference(child, 0);
        if (begin(*child, child)) context_.endReferredPacket();
    }

    void writeUnshared(Item const& item) {
        auto const write = [&](auto value) { context_.writeReferredPacket(typeOf(item.type()), value); };
        if (!visitScalar(item, write)) begin(item, nullptr);
    }

    /// Begins the packet and writes the payload, for a container only its size. True when the payload is complete.
    bool begin(Item const& item, void const* object) {
        auto const start = [&](auto value) {
            if (object) {
                context_.startPacket(typeOf(item.type()), object);
            } else {
                context_.startNewPacket(typeOf(item.type()), nullptr);
            }
            context_.writeValue(value);
        };
        auto const enter = [&](auto const& container) {
            start(container.size());
            open_.push(container);
            return true;
        };
        if (visitScalar(item, start)) return true;
        bool const isKnown = visit(
            item, [&](Array const& array) { return enter(array); },
            [&](Dictionary const& dictionary) { return enter(dictionary); }, [](Item const&) { return false; });
        if (!isKnown) context_.writeReference(&item, 0);  // it has no packet: the reference is refused
        return false;
    }

    /// False when the item has children, or is of an unknown kind.
    template <class Take>
    static bool visitScalar(Item const& item, Take take) {
        return visit(
            item, [&](Bool const& truth) { return take(truth.value()), true; },
            [&](Double const& number) { return take(number.value()), true; },
            [&](String const& text) { return take(text.value().view()), true; }, [](Item const&) { return false; });
    }

    ioPacketTypeId typeOf(Type kind) {
        ioPacketTypeId& type = types_[static_cast<std::size_t>(kind)];
        if (type == ioPacketTypeId::none) type = context_.typeId(impl::packetNames[kind]);
        return type;
    }

    ioWriteContext& context_;
    Sharing sharing_;
    std::array<ioPacketTypeId, impl::packetNames.size()> types_;
    std::array<unsigned char, impl::packetNames.size()> firstBytes_{};  ///< 0 where unknown
    impl::ScratchStack<Container> open_;
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
