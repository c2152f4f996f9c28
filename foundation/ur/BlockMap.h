// An ordered map for small dictionaries.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>

#include "foundation/ur/MapBlock.h"
#include "foundation/ur/MapIterator.h"
#include "foundation/ur/MapTree.h"

namespace ur {

namespace impl {

/// Checks the structure of a map, in tests.
template <class Map>
struct MapAudit;

}  // namespace impl

/// Entries with unique keys in ascending order, for programs whose maps are nearly all small.
///
/// A map of up to `blockSize` entries is one block. A copy or a reservation allocates the exact length; otherwise the
/// block grows by halves. A larger map is a B+tree of such blocks, which holds copies of some keys, perhaps of erased
/// ones. The map itself is one pointer. Looking up, inserting and erasing take logarithmic time. Inserting and erasing
/// move entries and invalidate all iterators and references into the map. If `Less` does not throw, erasing never
/// throws and inserting does all or nothing.
template <class Key, class Value, class Less, std::uint32_t blockSize = 64, std::uint32_t fanOut = 64>
class BlockMap {
    using Block = impl::MapBlock<Key, Value, blockSize, fanOut>;
    using Tree = typename Block::Tree;

public:
    using key_type = Key;
    using mapped_type = Value;
    using value_type = typename Block::Entry;
    using key_compare = Less;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = value_type&;
    using const_reference = value_type const&;
    using iterator = MapIterator<Block, value_type>;
    using const_iterator = MapIterator<Block, value_type const>;

    BlockMap() noexcept = default;
    BlockMap(std::initializer_list<value_type> entries) : BlockMap(entries.begin(), entries.end()) {}
    template <class Iterator>
    BlockMap(Iterator first, Iterator last) : BlockMap() {
        insert(first, last);
    }
    BlockMap(BlockMap const& other) : BlockMap() {
        copyWith(other, [](Value const& value) -> Value const& { return value; });
    }
    BlockMap(BlockMap&& other) noexcept : first_(std::exchange(other.first_, nullptr)) {}
    BlockMap& operator=(BlockMap other) noexcept {
        swap(other);
        return *this;
    }
    ~BlockMap() { clear(); }

    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    [[nodiscard]] size_type size() const noexcept {
        if (!first_) return 0;
        return first_->tree() ? first_->tree()->entries : first_->size;
    }
    [[nodiscard]] iterator begin() noexcept { return {first_, 0}; }
    [[nodiscard]] iterator end() noexcept { return behindLast(); }
    [[nodiscard]] const_iterator begin() const noexcept { return {first_, 0}; }
    [[nodiscard]] const_iterator end() const noexcept { return behindLast(); }

    [[nodiscard]] iterator find(Key const& key) { return findAny<iterator>(key); }
    [[nodiscard]] const_iterator find(Key const& key) const { return findAny<const_iterator>(key); }
    /// Looks up by any type that the order compares with keys.
    template <class K>
    requires requires { typename Less::is_transparent; }
    [[nodiscard]] iterator find(K const& key) { return findAny<iterator>(key); }
    template <class K>
    requires requires { typename Less::is_transparent; }
    [[nodiscard]] const_iterator find(K const& key) const { return findAny<const_iterator>(key); }

    [[nodiscard]] bool contains(Key const& key) const { return find(key) != end(); }
    template <class K>
    requires requires { typename Less::is_transparent; }
    [[nodiscard]] bool contains(K const& key) const { return find(key) != end(); }
    [[nodiscard]] size_type count(Key const& key) const { return contains(key); }
    [[nodiscard]] iterator lower_bound(Key const& key) { return onEntry(placeFor(key)); }
    [[nodiscard]] const_iterator lower_bound(Key const& key) const { return onEntry(placeFor(key)); }
    [[nodiscard]] iterator upper_bound(Key const& key) {
        iterator const at = lower_bound(key);
        return at != end() && !Less()(key, at->first) ? std::next(at) : at;
    }
    [[nodiscard]] const_iterator upper_bound(Key const& key) const {
        return const_cast<BlockMap*>(this)->upper_bound(key);
    }

    Value& operator[](Key const& key) { return try_emplace(key).first->second; }
    /// Throws `std::out_of_range` when the key is missing.
    [[nodiscard]] Value& at(Key const& key) {
        iterator const place = find(key);
        if (place == end()) throw std::out_of_range("no such key");
        return place->second;
    }
    [[nodiscard]] Value const& at(Key const& key) const { return const_cast<BlockMap*>(this)->at(key); }

    template <class... Arguments>
    std::pair<iterator, bool> try_emplace(Key key, Arguments&&... arguments) {
        iterator const place = placeFor(key);
        if (isAt(place, key)) return {place, false};
        return {insertAt(place, std::move(key), Value(std::forward<Arguments>(arguments)...)), true};
    }
    template <class V>
    std::pair<iterator, bool> insert_or_assign(Key key, V&& value) {
        iterator const place = placeFor(key);
        if (!isAt(place, key)) return {insertAt(place, std::move(key), Value(std::forward<V>(value))), true};
        place->second = std::forward<V>(value);
        return {place, false};
    }
    template <class K, class V>
    std::pair<iterator, bool> emplace(K&& key, V&& value) {
        return try_emplace(std::forward<K>(key), std::forward<V>(value));
    }
    template <class Iterator>
    void insert(Iterator first, Iterator last) {
        for (; first != last; ++first) try_emplace(end(), first->first, first->second);
    }
    std::pair<iterator, bool> insert(value_type const& entry) { return try_emplace(entry.first, entry.second); }
    std::pair<iterator, bool> insert(value_type&& entry) { return try_emplace(entry.first, std::move(entry.second)); }
    /// Skips the look-up when the key belongs directly before `hint`, and not between two blocks.
    template <class... Arguments>
    iterator try_emplace(const_iterator hint, Key key, Arguments&&... arguments) {
        bool const fits = (hint == end() || Less()(key, hint->first)) &&
                          (hint == begin() || (hint.index() > 0 && Less()(std::prev(hint)->first, key)));
        if (!fits) return try_emplace(std::move(key), std::forward<Arguments>(arguments)...).first;
        return insertAt(hint, std::move(key), Value(std::forward<Arguments>(arguments)...));
    }
    template <class K, class V>
    iterator emplace_hint(const_iterator hint, K&& key, V&& value) {
        return try_emplace(hint, std::forward<K>(key), std::forward<V>(value));
    }
    /// The value under the key that `key` makes; creates it if needed. Fast when the key comes after all others.
    /// Requires: `key` is not part of this map.
    template <class K>
    Value& ascending(K const& key) {
        if (!first_ || first_->isFull() || first_->tree()) return inOrder(key);
        // Creates the key in its final place; only if that place is wrong, the key is created again.
        Block& block = *first_;
        block.append(key, Value());
        std::uint32_t const last = block.size - 1;
        if (last == 0 || Less()(block[last - 1].first, block[last].first)) [[likely]]
            return block[last].second;
        return inOrder(key, last);
    }
    /// Requires: the key comes after all others; neither argument is part of this map.
    template <class K, class V>
    iterator emplaceLast(K&& key, V&& value) {
        if (!first_ || first_->isFull() || first_->tree()) [[unlikely]]
            return appendFar(std::forward<K>(key), std::forward<V>(value));
        first_->append(std::forward<K>(key), std::forward<V>(value));
        return {first_, first_->size - 1};
    }

    /// Copies the keys of `other`, each with the result of `copy(Value const&)` for its value. Requires: empty.
    template <class Copy>
    void copyWith(BlockMap const& other, Copy copy) {
        reserve(other.size());
        for (Block* from = other.first_; from; from = from->next()) {
            for (std::uint32_t i = 0; i < from->size; ++i) emplaceLast((*from)[i].first, copy((*from)[i].second));
        }
    }

    /// Returns the position after the erased entry.
    iterator erase(const_iterator at) noexcept {
        Block* const block = at.block();
        [[maybe_unused]] auto const erased = block->erase(at.index());  // destroyed when the map is consistent again
        if (Tree* const tree = block->tree()) return refilled(*tree, at);
        if (block->size == 0) clear();
        return first_ ? iterator(block, at.index()) : iterator();
    }
    iterator erase(iterator at) noexcept { return erase(const_iterator(at)); }
    size_type erase(Key const& key) {
        iterator const at = find(key);
        if (at == end()) return 0;
        erase(at);
        return 1;
    }
    void clear() noexcept {
        clear([](Value& /*value*/) {});
    }
    /// Passes each value to `drop(Value&)` before destroying it.
    template <class Drop>
    void clear(Drop drop) noexcept {
        Block* block = std::exchange(first_, nullptr);
        if (block) delete block->tree();
        while (block) Block::destroy(std::exchange(block, block->next()), drop);
    }
    void swap(BlockMap& other) noexcept { std::swap(first_, other.first_); }
    friend void swap(BlockMap& a, BlockMap& b) noexcept { a.swap(b); }

    /// Makes room in one block, if that many entries fit into one.
    void reserve(size_type entries) {
        entries = std::min<size_type>(entries, Block::full);
        if (entries > 0 && (!first_ || first_->capacity < entries)) grow(entries);
    }

    friend bool operator==(BlockMap const& a, BlockMap const& b) {
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
    }

private:
    template <class Map>
    friend struct impl::MapAudit;

    [[nodiscard]] Block* last() const noexcept {
        Tree const* const tree = first_ ? first_->tree() : nullptr;
        return tree ? tree->last() : first_;
    }
    [[nodiscard]] iterator behindLast() const noexcept { return {last(), first_ ? last()->size : 0}; }

    /// The block that contains or would contain `key`.
    template <class K>
    [[nodiscard]] Block* blockFor(K const& key) const {
        Tree const* const tree = first_ ? first_->tree() : nullptr;
        return tree ? tree->template find<Less>(key) : first_;
    }
    /// The position of `key` or its insertion position: perhaps after the last entry of a block.
    template <class K>
    [[nodiscard]] iterator placeFor(K const& key) const {
        Block* const block = blockFor(key);
        return {block, block ? block->template lowerBound<Less>(key) : 0};
    }
    [[nodiscard]] static iterator onEntry(iterator place) noexcept {
        Block* const block = place.block();
        return block && place.index() == block->size && block->next() ? iterator(block->next(), 0) : place;
    }
    template <class K>
    [[nodiscard]] static bool isAt(iterator place, K const& key) {
        return place.block() && place.index() < place.block()->size && !Less()(key, place->first);
    }
    template <class Iterator, class K>
    [[nodiscard]] Iterator findAny(K const& key) const {
        Block* const block = blockFor(key);
        if (!block) return {};
        std::uint32_t const index = block->template find<Less>(key);
        return index < block->size ? Iterator(block, index) : Iterator(behindLast());
    }

    /// The value of a key that may belong anywhere, or that was appended at `misplaced`.
    template <class K, class... Index>
    [[gnu::noinline]] Value& inOrder(K const& key, Index... misplaced) {
        (first_->erase(misplaced), ...);
        return try_emplace(end(), Key(key))->second;
    }

    /// Appends to a map whose only block is full, or that has several blocks.
    template <class K, class V>
    [[gnu::noinline]] iterator appendFar(K&& key, V&& value) {
        Block* const block = last();
        if (!block || block->isFull()) {
            return insertAt(end(), Key(std::forward<K>(key)), Value(std::forward<V>(value)));
        }
        block->append(std::forward<K>(key), std::forward<V>(value));
        ++block->tree()->entries;
        return {block, block->size - 1};
    }
    iterator insertAt(const_iterator place, Key&& key, Value&& value) {
        auto const [block, index] = roomAt(place, key);
        block->insert(index, std::move(key), std::move(value));
        if (Tree* const tree = block->tree()) ++tree->entries;
        return {block, index};
    }
    [[nodiscard]] typename Tree::Place roomAt(const_iterator place, Key const& key) {
        Block* const block = place.block();
        if (block && !block->isFull()) return {block, place.index()};
        if (block && block->capacity == Block::full) return splitAt(*block, place.index(), key);
        grow(block ? block->capacity + block->capacity / 2 + 1 : 1);
        return {first_, place.index()};
    }
    [[nodiscard]] static typename Tree::Place splitAt(Block& block, std::uint32_t index, Key const& key) {
        std::unique_ptr<Tree> made(block.tree() ? nullptr : new Tree(block));
        auto const place = block.tree()->split(block, index, key);
        (void)made.release();  // a map of two blocks has a tree
        return place;
    }

    /// Moves the only block, if any, into a larger one.
    void grow(size_type capacity) {
        Block* const larger = Block::make(static_cast<std::uint32_t>(std::min<size_type>(capacity, Block::full)));
        if (first_) {
            first_->moveTail(0, *larger);
            Block::destroy(first_);
        }
        first_ = larger;
    }

    /// After an entry was erased from a block of the tree: the position of the entry that followed it.
    iterator refilled(Tree& tree, const_iterator at) noexcept {
        --tree.entries;
        auto const place = tree.refill(*at.block(), at.index());
        if (tree.hasOneBlock()) delete &tree;
        return onEntry({place.block, place.index});
    }

    Block* first_ = nullptr;
};

}  // namespace ur
