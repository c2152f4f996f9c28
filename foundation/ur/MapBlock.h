// The blocks of an ordered map's entries.
#pragma once

#include <algorithm>
#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "foundation/ur/NodeHeap.h"
#include "foundation/ur/mapSearch.h"

namespace ur {

template <class T>
struct less;

}  // namespace ur

namespace ur::impl {

template <class Key, class Value, std::uint32_t blockSize, std::uint32_t fanOut>
class MapBranch;
template <class Key, class Value, std::uint32_t blockSize, std::uint32_t fanOut>
class MapTree;

/// Entries in ascending order, with spare room after them.
///
/// A map of up to `full` entries is one block of any capacity. A larger one is a tree whose leaves are blocks of the
/// capacity `full`, linked in both directions. Owned by its map.
template <class Key, class Value, std::uint32_t blockSize, std::uint32_t fanOut>
class alignas(std::uint32_t) alignas(std::pair<Key const, Value>) MapBlock {
public:
    using Entry = std::pair<Key const, Value>;
    using Branch = MapBranch<Key, Value, blockSize, fanOut>;
    using Tree = MapTree<Key, Value, blockSize, fanOut>;

    static constexpr std::uint32_t full = blockSize;
    /// The fewest entries of a block in a tree, except its last block.
    static constexpr std::uint32_t least = full / 2;

    /// The block's position in its tree; all null in a map of one block.
    struct Links {
        MapBlock* previous = nullptr;
        MapBlock* next = nullptr;
        Branch* parent = nullptr;
        Tree* tree = nullptr;
    };

    [[nodiscard]] static MapBlock* make(std::uint32_t capacity) {
        auto* block = new (allocateNode(bytes(capacity))) MapBlock(capacity);
        if (capacity == full) new (&block->links()) Links;
        return block;
    }
    static void destroy(MapBlock* block) noexcept {
        destroy(block, [](Value& /*value*/) {});
    }
    /// Passes each value to `drop` before destroying it.
    template <class Drop>
    static void destroy(MapBlock* block, Drop&& drop) noexcept {
        for (std::uint32_t i = 0; i < block->size; ++i) {
            drop((*block)[i].second);
            std::destroy_at(&(*block)[i]);
        }
        deallocateNode(block, bytes(block->capacity));
    }

    [[nodiscard]] Entry& operator[](std::uint32_t index) noexcept { return entries()[index]; }
    [[nodiscard]] Entry const& operator[](std::uint32_t index) const noexcept {
        return reinterpret_cast<Entry const*>(this + 1)[index];
    }
    [[nodiscard]] bool isFull() const noexcept { return size == capacity; }

    /// Requires: the capacity `full`.
    [[nodiscard]] Links& links() noexcept {
        return *reinterpret_cast<Links*>(reinterpret_cast<std::byte*>(this) + linksOffset());
    }
    [[nodiscard]] MapBlock* next() noexcept { return capacity == full ? links().next : nullptr; }
    [[nodiscard]] MapBlock* previous() noexcept { return capacity == full ? links().previous : nullptr; }
    [[nodiscard]] Tree* tree() noexcept { return capacity == full ? links().tree : nullptr; }

    /// The first entry whose key is not before `key`.
    template <class Less, class K>
    [[nodiscard]] std::uint32_t lowerBound(K const& key) const {
        return countBefore<std::min(6U, full / 2)>(
            size, [&, less = Less()](std::uint32_t i) { return less((*this)[i].first, key); });
    }
    /// The entry with `key`, or `size`. Among few entries, testing equality is cheaper than order, if the key's type
    /// promises that both agree.
    template <class Less, class K>
    [[nodiscard]] std::uint32_t find(K const& key) const {
        constexpr std::uint32_t few = std::min(8U, full / 2);
        if constexpr (std::same_as<Less, ur::less<Key>> && std::three_way_comparable<Key, std::strong_ordering>) {
            if (size <= few) {
                std::uint32_t index = 0;
                while (index < size && !((*this)[index].first == key)) ++index;
                return index;
            }
        }
        std::uint32_t const index = lowerBound<Less>(key);
        return index < size && !Less()(key, (*this)[index].first) ? index : size;
    }

    /// Requires: not full.
    template <class... Arguments>
    void append(Arguments&&... arguments) {
        new (&entries()[size]) Entry(std::forward<Arguments>(arguments)...);
        ++size;
    }
    /// Requires: not full.
    void insert(std::uint32_t index, Key&& key, Value&& value) noexcept {
        openGap(index, 1);
        new (&entries()[index]) Entry(std::move(key), std::move(value));
    }
    /// Returns the erased entry, whose destructors may access the map.
    std::pair<Key, Value> erase(std::uint32_t index) noexcept {
        Entry& entry = entries()[index];
        std::pair<Key, Value> erased(std::move(const_cast<Key&>(entry.first)), std::move(entry.second));
        std::destroy_at(&entry);
        closeGap(index, 1);
        return erased;
    }
    /// Appends the entries from `index` on to `other`, which has room for them.
    void moveTail(std::uint32_t index, MapBlock& other) noexcept {
        for (std::uint32_t i = index; i < size; ++i) relocate(entries()[i], other.entries()[other.size++]);
        size = index;
    }
    /// Moves entries between two neighbours until the first one has `count` of them.
    static void share(MapBlock& first, MapBlock& second, std::uint32_t count) noexcept {
        if (count < first.size) {
            std::uint32_t const moved = first.size - count;
            second.openGap(0, moved);
            for (std::uint32_t i = 0; i < moved; ++i) relocate(first.entries()[count + i], second.entries()[i]);
            first.size = count;
        } else {
            std::uint32_t const moved = count - first.size;
            for (std::uint32_t i = 0; i < moved; ++i) relocate(second.entries()[i], first.entries()[first.size++]);
            second.closeGap(0, moved);
        }
    }

    std::uint32_t size = 0;
    std::uint32_t const capacity;

private:
    static_assert(full >= 2);
    static_assert(alignof(Entry) <= alignof(std::max_align_t));
    static_assert(std::is_nothrow_move_constructible_v<Key> && std::is_nothrow_move_constructible_v<Value>);

    explicit MapBlock(std::uint32_t room) noexcept : capacity(room) {}

    [[nodiscard]] static constexpr std::size_t linksOffset() noexcept {
        std::size_t const entriesEnd = sizeof(MapBlock) + full * sizeof(Entry);
        return (entriesEnd + alignof(Links) - 1) / alignof(Links) * alignof(Links);
    }
    [[nodiscard]] static std::size_t bytes(std::uint32_t capacity) noexcept {
        return capacity == full ? linksOffset() + sizeof(Links) : sizeof(MapBlock) + capacity * sizeof(Entry);
    }
    [[nodiscard]] Entry* entries() noexcept { return reinterpret_cast<Entry*>(this + 1); }
    void openGap(std::uint32_t index, std::uint32_t count) noexcept {
        for (std::uint32_t i = size; i-- > index;) relocate(entries()[i], entries()[i + count]);
        size += count;
    }
    void closeGap(std::uint32_t index, std::uint32_t count) noexcept {
        for (std::uint32_t i = index + count; i < size; ++i) relocate(entries()[i], entries()[i - count]);
        size -= count;
    }
    /// Moves the key as well, which is constant only for users.
    static void relocate(Entry& from, Entry& to) noexcept {
        new (&to) Entry(std::move(const_cast<Key&>(from.first)), std::move(from.second));
        std::destroy_at(&from);
    }
};

}  // namespace ur::impl
