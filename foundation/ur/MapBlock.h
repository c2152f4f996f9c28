// The blocks that an ordered map keeps its entries in.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "foundation/ur/NodeHeap.h"

namespace ur {

template <class T>
struct less;

}  // namespace ur

namespace ur::impl {

/// Entries in ascending order, with room for some more behind them.
///
/// A block grows up to `full`; from there on its map has several, which know their neighbours, and of which the first
/// one leads to the map's directory.
template <class Key, class Value, class Directory>
class alignas(std::uint32_t) alignas(std::pair<Key const, Value>) MapBlock {
public:
    using Entry = std::pair<Key const, Value>;

    static constexpr std::uint32_t full = 64;

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
        destroy(block, [](Value& /*value*/) {});
    }
    /// Lets `drop` see each value before it goes.
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

    [[nodiscard]] Neighbours& neighbours() noexcept { return *reinterpret_cast<Neighbours*>(entries() + full); }
    [[nodiscard]] MapBlock* next() noexcept { return capacity == full ? neighbours().next : nullptr; }
    [[nodiscard]] MapBlock* previous() noexcept { return capacity == full ? neighbours().previous : nullptr; }
    [[nodiscard]] Directory* directory() noexcept { return capacity == full ? neighbours().directory : nullptr; }

    /// The first entry whose key is not before `key`.
    template <class Less, class K>
    [[nodiscard]] std::uint32_t lowerBound(K const& key) const {
        return firstBut<6>(0, [&, less = Less()](Entry const& entry) { return less(entry.first, key); });
    }
    /// The last entry whose key is not behind `key`, which that of the first one is taken to be.
    template <class Less, class K>
    [[nodiscard]] std::uint32_t floor(K const& key) const {
        return firstBut<1>(1, [&, less = Less()](Entry const& entry) { return !less(key, entry.first); }) - 1;
    }
    /// The entry with `key`, or `size`. Among few, asking for the equal one is cheaper than asking for the order, where
    /// the key's type promises that both agree.
    template <class Less, class K>
    [[nodiscard]] std::uint32_t find(K const& key) const {
        constexpr std::uint32_t few = 8;
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
    template <class... Arguments>
    void insert(std::uint32_t index, Arguments&&... arguments) {
        if (index == size) {
            append(std::forward<Arguments>(arguments)...);
        } else {
            std::pair<Key, Value> entry(std::forward<Arguments>(arguments)...);  // may be made of what moves
            for (std::uint32_t i = size; i > index; --i) relocate(entries()[i - 1], entries()[i]);
            new (&entries()[index]) Entry(std::move(entry));
            ++size;
        }
    }
    /// Gives what was erased, whose destructors may come back to the map.
    std::pair<Key, Value> erase(std::uint32_t index) noexcept {
        Entry& entry = entries()[index];
        std::pair<Key, Value> erased(std::move(const_cast<Key&>(entry.first)), std::move(entry.second));
        std::destroy_at(&entry);
        for (std::uint32_t i = index + 1; i < size; ++i) relocate(entries()[i], entries()[i - 1]);
        --size;
        return erased;
    }
    /// Appends the entries from `index` on to `other`, which has room for them.
    void moveTail(std::uint32_t index, MapBlock& other) noexcept {
        for (std::uint32_t i = index; i < size; ++i) relocate(entries()[i], other.entries()[other.size++]);
        size = index;
    }

    std::uint32_t size = 0;
    std::uint32_t const capacity;

private:
    static_assert(alignof(Entry) <= alignof(std::max_align_t));
    static_assert(std::is_nothrow_move_constructible_v<Key> && std::is_nothrow_move_constructible_v<Value>);

    explicit MapBlock(std::uint32_t room) noexcept : capacity(room) {}

    /// The first entry from `first` on that is not `before`. The last `few` are looked at one after the other.
    template <std::uint32_t few, class Before>
    [[nodiscard]] std::uint32_t firstBut(std::uint32_t first, Before before) const {
        std::uint32_t count = size - first;
        while (count > few) {
            std::uint32_t const half = count / 2;
            bool const behind = before((*this)[first + half]);
            first = behind ? first + half + 1 : first;
            count = behind ? count - half - 1 : half;
        }
        for (; count > 0 && before((*this)[first]); --count) ++first;
        return first;
    }

    [[nodiscard]] static std::size_t bytes(std::uint32_t capacity) noexcept {
        return sizeof(MapBlock) + capacity * sizeof(Entry) + (capacity == full ? sizeof(Neighbours) : 0);
    }
    [[nodiscard]] Entry* entries() noexcept { return reinterpret_cast<Entry*>(this + 1); }
    /// Moves the key as well, which is constant to users only.
    static void relocate(Entry& from, Entry& to) noexcept {
        new (&to) Entry(std::move(const_cast<Key&>(from.first)), std::move(from.second));
        std::destroy_at(&from);
    }
};

}  // namespace ur::impl
