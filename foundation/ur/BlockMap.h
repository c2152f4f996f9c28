// An ordered map made for small dictionaries.
#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>

#include "foundation/ur/MapBlock.h"

namespace ur {

/// Stands on an entry of a `BlockMap`, or behind the last one.
template <class Block, class Type>
class BlockMapIterator {
public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = std::remove_const_t<Type>;
    using difference_type = std::ptrdiff_t;
    using pointer = Type*;
    using reference = Type&;

    BlockMapIterator() noexcept = default;
    BlockMapIterator(Block* block, std::uint32_t index) noexcept : block_(block), index_(index) {}
    template <class Other>
    requires std::convertible_to<Other*, Type*> BlockMapIterator(BlockMapIterator<Block, Other> const& other)
    noexcept : block_(other.block()), index_(other.index()) {}

    [[nodiscard]] Block* block() const noexcept { return block_; }
    [[nodiscard]] std::uint32_t index() const noexcept { return index_; }

    [[nodiscard]] reference operator*() const noexcept { return (*block_)[index_]; }
    [[nodiscard]] pointer operator->() const noexcept { return &(*block_)[index_]; }
    BlockMapIterator& operator++() noexcept {
        if (++index_ == block_->size && block_->next()) *this = {block_->next(), 0};
        return *this;
    }
    BlockMapIterator& operator--() noexcept {
        if (index_ == 0) *this = {block_->previous(), block_->previous()->size};
        --index_;
        return *this;
    }
    BlockMapIterator operator++(int) noexcept {
        auto const before = *this;
        ++*this;
        return before;
    }
    BlockMapIterator operator--(int) noexcept {
        auto const before = *this;
        --*this;
        return before;
    }
    friend bool operator==(BlockMapIterator const& a, BlockMapIterator const& b) noexcept = default;

private:
    Block* block_ = nullptr;
    std::uint32_t index_ = 0;
};

/// Entries with unique keys in ascending order, for maps of which nearly all are small.
///
/// A map of up to 64 entries is one block, as long as needed when it was copied or reserved for, and growing by
/// halves otherwise; a larger one is a list of such blocks with a directory, which is such a map again and holds copies
/// of some keys, perhaps of erased ones. The map itself is one pointer. Looking up takes logarithmic time; inserting
/// and erasing take that and the moving of some entries, which ends the validity of every iterator and reference into
/// the map.
template <class Key, class Value, class Less>
class BlockMap {
    struct Directory;
    using Block = impl::MapBlock<Key, Value, Directory>;

public:
    using key_type = Key;
    using mapped_type = Value;
    using value_type = typename Block::Entry;
    using key_compare = Less;
    using size_type = std::size_t;
    using difference_type = std::ptrdiff_t;
    using reference = value_type&;
    using const_reference = value_type const&;
    using iterator = BlockMapIterator<Block, value_type>;
    using const_iterator = BlockMapIterator<Block, value_type const>;

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
        return first_->directory() ? first_->directory()->entries : first_->size;
    }
    [[nodiscard]] iterator begin() noexcept { return {first_, 0}; }
    [[nodiscard]] iterator end() noexcept { return behindLast(); }
    [[nodiscard]] const_iterator begin() const noexcept { return {first_, 0}; }
    [[nodiscard]] const_iterator end() const noexcept { return behindLast(); }

    [[nodiscard]] iterator find(Key const& key) { return findAny<iterator>(key); }
    [[nodiscard]] const_iterator find(Key const& key) const { return findAny<const_iterator>(key); }
    /// Looks up by whatever the order compares with keys.
    template <class K>
    requires requires { typename Less::is_transparent; }
    [[nodiscard]] iterator find(K const& key) { return findAny<iterator>(key); }
    template <class K>
    requires requires { typename Less::is_transparent; }
    [[nodiscard]] const_iterator find(K const& key) const { return findAny<const_iterator>(key); }

    [[nodiscard]] bool contains(Key const& key) const { return find(key) != end(); }
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
    /// Throws `std::out_of_range` when there is no such key.
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
    /// Without a look-up when the key belongs right before `hint`, and not between two blocks.
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
    /// The value under the key that `key` makes, a new one if there is none: in few steps when it comes after all
    /// others. Requires: `key` is not part of this map.
    template <class K>
    Value& ascending(K const& key) {
        if (!first_ || first_->isFull() || first_->directory()) return inOrder(key);
        // The key is made where it stays; only if that is the wrong place, it has to be made again.
        Block& block = *first_;
        block.append(key, Value());
        std::uint32_t const last = block.size - 1;
        if (last == 0 || Less()(block[last - 1].first, block[last].first)) [[likely]]
            return block[last].second;
        return inOrder(key, last);
    }
    /// Requires: the key comes after all others, and neither argument is part of this map.
    template <class K, class V>
    iterator emplaceLast(K&& key, V&& value) {
        if (!first_ || first_->isFull() || first_->directory()) [[unlikely]]
            return insertAt(end(), Key(std::forward<K>(key)), Value(std::forward<V>(value)));
        first_->append(std::forward<K>(key), std::forward<V>(value));
        return {first_, first_->size - 1};
    }

    /// Becomes a map with the keys of `other`, under each what `copy(Value const&)` makes of its value. Requires:
    /// empty.
    template <class Copy>
    void copyWith(BlockMap const& other, Copy copy) {
        reserve(other.size());
        for (Block* from = other.first_; from; from = from->next()) {
            for (std::uint32_t i = 0; i < from->size; ++i) emplaceLast((*from)[i].first, copy((*from)[i].second));
        }
    }

    /// The place behind the erased entry.
    iterator erase(const_iterator at) noexcept {
        Block* const block = at.block();
        auto const erased = block->erase(at.index());  // goes when the map is whole again
        if (Directory* const directory = first_->directory()) --directory->entries;
        iterator const next = onEntry({block, at.index()});
        if (block->size > 0) return compacted(next, *block);
        bool const wasLast = block == last();
        remove(*block, erased.first);
        return wasLast ? end() : next;
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
    /// Lets `drop(Value&)` see each value before it goes.
    template <class Drop>
    void clear(Drop drop) noexcept {
        Block* block = std::exchange(first_, nullptr);
        if (block) delete block->directory();
        while (block) Block::destroy(std::exchange(block, block->next()), drop);
    }
    void swap(BlockMap& other) noexcept { std::swap(first_, other.first_); }
    friend void swap(BlockMap& a, BlockMap& b) noexcept { a.swap(b); }

    /// Makes room in one block, if so many entries fit one.
    void reserve(size_type entries) {
        entries = std::min<size_type>(entries, Block::full);
        if (entries > 0 && (!first_ || first_->capacity < entries)) grow(entries);
    }

    friend bool operator==(BlockMap const& a, BlockMap const& b) {
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
    }

private:
    template <class OtherKey, class OtherValue, class OtherLess>
    friend class BlockMap;

    /// Leads to the blocks of a map that has several. Each is listed under a key that is behind all those of the block
    /// before it, and not behind its own; only the very first one may have keys before that.
    struct Directory {
        using Map = BlockMap<Key, void*, Less>;

        /// Out of line, so that looking up in small maps stays short.
        template <class K>
        [[nodiscard, gnu::noinline]] Block* find(K const& key) const {
            return static_cast<Block*>(blocks.floor(key)->second);
        }

        Map blocks;
        size_type entries = 0;
    };

    [[nodiscard]] Block* last() const noexcept {
        if (!first_ || !first_->directory()) return first_;
        return static_cast<Block*>(std::prev(first_->directory()->blocks.end())->second);
    }
    [[nodiscard]] iterator behindLast() const noexcept { return {last(), first_ ? last()->size : 0}; }

    /// The block that has or would get `key`.
    template <class K>
    [[nodiscard]] Block* blockFor(K const& key) const {
        Directory const* const directory = first_ ? first_->directory() : nullptr;
        return directory ? directory->find(key) : first_;
    }
    /// The last entry whose key is not behind `key`; the first one of its block if there is none. Requires: not empty.
    template <class K>
    [[nodiscard]] iterator floor(K const& key) const {
        Block* const block = blockFor(key);
        return {block, block->template floor<Less>(key)};
    }
    /// Where `key` is or would be put: perhaps behind the last entry of a block.
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

    /// The value under a key that may stand anywhere, or that was appended at `misplaced`.
    template <class K, class... Index>
    [[gnu::noinline]] Value& inOrder(K const& key, Index... misplaced) {
        (first_->erase(misplaced), ...);
        return try_emplace(end(), Key(key))->second;
    }

    template <class K, class V>
    iterator insertAt(const_iterator place, K&& key, V&& value) {
        Block* block = place.block();
        std::uint32_t index = place.index();
        if (index == 0 && block && block->previous()) listUnder(key, *block);
        if (!block || block->isFull()) {
            if (!block || block->capacity < Block::full) {
                grow(block ? block->capacity + block->capacity / 2 + 1 : 1);
                block = first_;
            } else {
                split(*block, index, key);
                if (index > block->size || block->isFull()) {
                    index -= block->size;
                    block = block->next();
                }
            }
        }
        block->insert(index, std::forward<K>(key), std::forward<V>(value));
        if (Directory* const directory = first_->directory()) ++directory->entries;
        return {block, index};
    }

    /// Moves the only block, if there is one, into a larger one.
    void grow(size_type capacity) {
        Block* const larger = Block::make(static_cast<std::uint32_t>(std::min<size_type>(capacity, Block::full)));
        if (first_) {
            first_->moveTail(0, *larger);
            Block::destroy(first_);
        }
        first_ = larger;
    }

    /// Puts a block behind a full one, with half of its entries; with none if `key`, which is to stand at `index`,
    /// comes last of all.
    void split(Block& block, std::uint32_t index, Key const& key) {
        bool const isLast = !block.next() && index == Block::full;
        // All that can fail comes first: a map has a directory only together with a second block.
        std::unique_ptr<Directory> made(first_->directory() ? nullptr : new Directory);
        if (made) made->entries = first_->size;
        Block* const added =
            list(made ? *made : *first_->directory(), block, isLast ? key : block[Block::full / 2].first);
        if (made) first_->neighbours().directory = made.release();
        added->neighbours().previous = &block;
        added->neighbours().next = block.next();
        if (block.next()) block.next()->neighbours().previous = added;
        block.neighbours().next = added;
        if (!isLast) block.moveTail(Block::full / 2, *added);
    }
    /// A new block, listed behind `block` under the key that parts the two.
    Block* list(Directory& directory, Block& block, Key const& parting) {
        auto const destroy = [](Block* unlisted) { Block::destroy(unlisted); };
        std::unique_ptr<Block, decltype(destroy)> added(Block::make(Block::full), destroy);
        if (directory.blocks.empty()) directory.blocks.emplaceLast(block[0].first, &block);
        auto const place = directory.blocks.floor(block[0].first);
        directory.blocks.insertAt({place.block(), place.index() + 1}, Key(parting), added.get());
        return added.release();
    }

    /// Before `key` becomes the first one of a block that is not the first.
    void listUnder(Key const& key, Block& block) {
        auto const place = first_->directory()->blocks.floor(block[0].first);
        if (Less()(key, place->first)) const_cast<Key&>(place->first) = key;
    }

    /// Takes an empty block out, the last key of which was `key`.
    void remove(Block& block, Key const& key) noexcept {
        Directory* const directory = first_->directory();
        if (!directory) return clear();
        Block* const next = block.next();
        Block* const previous = block.previous();
        if (next) next->neighbours().previous = previous;
        (previous ? previous->neighbours().next : first_) = next;
        first_->neighbours().directory = directory;
        directory->blocks.erase(directory->blocks.floor(key));
        Block::destroy(&block);
        if (directory->blocks.size() > 1) return;
        first_->neighbours().directory = nullptr;
        delete directory;
    }

    /// Joins a block of few entries with the next one, if that has few as well. A block that heads one of the directory
    /// stays, since keys before its own are looked for there.
    iterator compacted(iterator at, Block& block) noexcept {
        Block* const next = block.next();
        if (!next || block.size + next->size > Block::full / 2) return at;
        if (first_->directory()->blocks.floor((*next)[0].first).index() == 0) return at;
        std::uint32_t const former = block.size;
        next->moveTail(0, block);
        remove(*next, block[former].first);
        return at.block() == &block ? at : iterator(&block, former + at.index());
    }

    Block* first_ = nullptr;
};

}  // namespace ur
