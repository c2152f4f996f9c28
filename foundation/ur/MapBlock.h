// The blocks that an ordered map keeps its entries in.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "foundation/ur/NodeHeap.h"

namespace ur {

template <class T>
struct less;

}  // namespace ur

namespace ur::impl {

/// Entries in ascending order, with room for some more behind them.
///
/// A block grows up to `full`; from there on its map has several, which know their neighbours.
template <class Key, class Value>
class MapBlock {
public:
    using Entry = std::pair<Key const, Value>;

    static constexpr std::uint32_t full = 64;

    /// The blocks of a map that has several, in order; known to the first one.
    struct Directory {
        std::vector<MapBlock*> blocks;
        std::size_t entries = 0;
    };
    struct Neighbours {
        MapBlock* previous = nullptr;
        MapBlock* next = nullptr;
        Directory* directory = nullptr;
    };

    [[nodiscard]] static MapBlock* make(std::uint32_t capacity) {
        auto* block = new (allocateNode(bytes(capacity))) MapBlock(capacity);
        if (capacity == full) new (&block->neighbours()) Neighbours;
        return block;
    }
    static void destroy(MapBlock* block) noexcept {
        for (std::uint32_t i = 0; i < block->size; ++i) std::destroy_at(&block->slot(i).movable);
        deallocateNode(block, bytes(block->capacity));
    }

    [[nodiscard]] Entry& operator[](std::uint32_t index) noexcept { return slot(index).entry; }
    [[nodiscard]] Entry const& operator[](std::uint32_t index) const noexcept { return slot(index).entry; }
    [[nodiscard]] bool isFull() const noexcept { return size == capacity; }

    [[nodiscard]] Neighbours& neighbours() noexcept { return *reinterpret_cast<Neighbours*>(slots() + full); }
    [[nodiscard]] MapBlock* next() noexcept { return capacity == full ? neighbours().next : nullptr; }
    [[nodiscard]] MapBlock* previous() noexcept { return capacity == full ? neighbours().previous : nullptr; }
    [[nodiscard]] Directory* directory() noexcept { return capacity == full ? neighbours().directory : nullptr; }

    /// The first entry whose key is not before `key`.
    template <class Less, class K>
    [[nodiscard]] std::uint32_t lowerBound(K const& key) const {
        constexpr std::uint32_t few = 6;
        Less const less;
        std::uint32_t first = 0;
        std::uint32_t count = size;
        while (count > few) {
            std::uint32_t const half = count / 2;
            bool const before = less((*this)[first + half].first, key);
            first = before ? first + half + 1 : first;
            count = before ? count - half - 1 : half;
        }
        for (; count > 0 && less((*this)[first].first, key); --count) ++first;
        return first;
    }
    /// The entry with `key`, or `size`. Among few, asking for the equal one is cheaper than asking for the order.
    template <class Less, class K>
    [[nodiscard]] std::uint32_t find(K const& key) const {
        constexpr std::uint32_t few = 8;
        if (std::same_as<Less, ur::less<Key>> && size <= few) {
            std::uint32_t index = 0;
            while (index < size && !((*this)[index].first == key)) ++index;
            return index;
        }
        std::uint32_t const index = lowerBound<Less>(key);
        return index < size && !Less()(key, (*this)[index].first) ? index : size;
    }

    /// Requires: not full.
    template <class... Arguments>
    void insert(std::uint32_t index, Arguments&&... arguments) {
        if (index == size) {
            new (&slot(index).movable) Movable(std::forward<Arguments>(arguments)...);
        } else {
            Movable entry(std::forward<Arguments>(arguments)...);  // may be made of what moves
            for (std::uint32_t i = size; i > index; --i) relocate(slot(i - 1), slot(i));
            new (&slot(index).movable) Movable(std::move(entry));
        }
        ++size;
    }
    void erase(std::uint32_t index) noexcept {
        std::destroy_at(&slot(index).movable);
        for (std::uint32_t i = index + 1; i < size; ++i) relocate(slot(i), slot(i - 1));
        --size;
    }
    /// Appends the entries from `index` on to `other`, which has room for them.
    void moveTail(std::uint32_t index, MapBlock& other) noexcept {
        for (std::uint32_t i = index; i < size; ++i) relocate(slot(i), other.slot(other.size++));
        size = index;
    }

    std::uint32_t size = 0;
    std::uint32_t const capacity;

private:
    using Movable = std::pair<Key, Value>;

    /// Keys are constant to users, but entries move within and between blocks.
    union Slot {
        Slot() {}
        ~Slot() {}
        Movable movable;
        Entry entry;
    };
    static_assert(alignof(Slot) <= 8 && sizeof(Movable) == sizeof(Entry));
    static_assert(std::is_nothrow_move_constructible_v<Movable>);

    explicit MapBlock(std::uint32_t room) noexcept : capacity(room) {}

    [[nodiscard]] static std::size_t bytes(std::uint32_t capacity) noexcept {
        return sizeof(MapBlock) + capacity * sizeof(Slot) + (capacity == full ? sizeof(Neighbours) : 0);
    }
    [[nodiscard]] Slot* slots() noexcept { return reinterpret_cast<Slot*>(this + 1); }
    [[nodiscard]] Slot& slot(std::uint32_t index) noexcept { return slots()[index]; }
    [[nodiscard]] Slot const& slot(std::uint32_t index) const noexcept {
        return reinterpret_cast<Slot const*>(this + 1)[index];
    }
    static void relocate(Slot& from, Slot& to) noexcept {
        new (&to.movable) Movable(std::move(from.movable));
        std::destroy_at(&from.movable);
    }
};

}  // namespace ur::impl
