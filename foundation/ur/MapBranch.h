// The inner nodes of a large ordered map.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "foundation/ur/MapBlock.h"
#include "foundation/ur/mapSearch.h"

namespace ur::impl {

/// An inner node: children, all blocks or all branches, and a separator between each two neighbours.
///
/// No key in a child is before the separator on its left, and every key is before the separator on its right.
/// Separators are copies of keys, perhaps of erased entries. Owns separators, not children. Has room for one extra
/// child, so that it is split after the insertion.
template <class Key, class Value, std::uint32_t blockSize, std::uint32_t fanOut>
class MapBranch {
public:
    using Block = MapBlock<Key, Value, blockSize, fanOut>;

    static constexpr std::uint32_t full = fanOut;
    /// The fewest children, except for the root and the last branch of a level, which have two or more.
    static constexpr std::uint32_t least = (full + 1) / 2;

    MapBranch() noexcept = default;
    MapBranch(MapBranch const&) = delete;
    MapBranch& operator=(MapBranch const&) = delete;
    ~MapBranch() {
        for (std::uint32_t i = 1; i < size; ++i) std::destroy_at(&separator(i));
    }

    [[nodiscard]] Block& block(std::uint32_t index) const noexcept { return *static_cast<Block*>(children_[index]); }
    [[nodiscard]] MapBranch& branch(std::uint32_t index) const noexcept {
        return *static_cast<MapBranch*>(children_[index]);
    }
    /// The separator before child `index`. Requires: `index` is at least one.
    [[nodiscard]] Key& separator(std::uint32_t index) noexcept {
        return reinterpret_cast<Key*>(separators_)[index - 1];
    }

    /// The child whose range includes `key`.
    template <class Less, class K>
    [[nodiscard]] std::uint32_t childFor(K const& key) const {
        auto const* const separators = reinterpret_cast<Key const*>(separators_);
        return countBefore<1>(size - 1, [&, less = Less()](std::uint32_t i) { return !less(key, separators[i]); });
    }
    [[nodiscard]] std::uint32_t indexOf(void const* child) const noexcept {
        std::uint32_t index = 0;
        while (children_[index] != child) ++index;
        return index;
    }

    /// Requires: no children yet.
    void setFirst(void* child) noexcept {
        size = 1;
        put(0, child);
    }
    /// Inserts a child after another one. Requires: `index` is at least one.
    void insert(std::uint32_t index, Key&& before, void* child) noexcept {
        insertAt(index, index, std::move(before), child);
    }
    void append(Key&& before, void* child) noexcept { insertAt(size, size, std::move(before), child); }
    /// Removes a child and the separator before it. Requires: `index` is at least one.
    void erase(std::uint32_t index) noexcept { eraseAt(index, index); }

    /// Moves the children from `index` on to a new branch; returns the separator between the two.
    [[nodiscard]] Key split(std::uint32_t index, MapBranch& added) noexcept {
        Key parting(std::move(separator(index)));
        added.setFirst(children_[index]);
        for (std::uint32_t i = index + 1; i < size; ++i) added.append(std::move(separator(i)), children_[i]);
        while (size > index) eraseAt(size - 1, size - 1);
        return parting;
    }
    /// Takes all children of the next branch; `parting` was the separator before it.
    void takeAll(MapBranch& next, Key&& parting) noexcept {
        append(std::move(parting), next.children_[0]);
        for (std::uint32_t i = 1; i < next.size; ++i) append(std::move(next.separator(i)), next.children_[i]);
    }
    /// Takes the first child of the next branch; `parting` stays between the two.
    void takeFirst(MapBranch& next, Key& parting) noexcept {
        append(std::move(parting), next.children_[0]);
        replace(parting, std::move(next.separator(1)));
        next.eraseAt(0, 1);
    }
    /// Takes the last child of the previous branch; `parting` stays between the two.
    void takeLast(MapBranch& previous, Key& parting) noexcept {
        std::uint32_t const last = previous.size - 1;
        insertAt(0, 1, std::move(parting), previous.children_[last]);
        replace(parting, std::move(previous.separator(last)));
        previous.eraseAt(last, last);
    }

    MapBranch* parent = nullptr;
    std::uint32_t size = 0;   ///< the number of children
    std::uint32_t level = 0;  ///< height above the branches whose children are blocks

private:
    static_assert(full >= 3);
    static_assert(std::is_nothrow_move_constructible_v<Key>);

    void put(std::uint32_t index, void* child) noexcept {
        children_[index] = child;
        (level == 0 ? block(index).links().parent : branch(index).parent) = this;
    }
    void insertAt(std::uint32_t index, std::uint32_t separatorIndex, Key&& key, void* child) noexcept {
        for (std::uint32_t i = size; i > separatorIndex; --i) relocate(separator(i - 1), separator(i));
        new (&separator(separatorIndex)) Key(std::move(key));
        for (std::uint32_t i = size; i > index; --i) children_[i] = children_[i - 1];
        ++size;
        put(index, child);
    }
    void eraseAt(std::uint32_t index, std::uint32_t separatorIndex) noexcept {
        std::destroy_at(&separator(separatorIndex));
        --size;
        for (std::uint32_t i = separatorIndex; i < size; ++i) relocate(separator(i + 1), separator(i));
        for (std::uint32_t i = index; i < size; ++i) children_[i] = children_[i + 1];
    }
    static void relocate(Key& from, Key& to) noexcept {
        new (&to) Key(std::move(from));
        std::destroy_at(&from);
    }
    static void replace(Key& key, Key&& by) noexcept {
        std::destroy_at(&key);
        new (&key) Key(std::move(by));
    }

    void* children_[full + 1];
    alignas(Key) std::byte separators_[full * sizeof(Key)];
};

}  // namespace ur::impl
