// The tree over the blocks of a large ordered map.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "foundation/ur/MapBlock.h"
#include "foundation/ur/MapBranch.h"

namespace ur::impl {

/// A B+tree: blocks as leaves, linked in both directions, and branches above them.
///
/// After every operation: every key is in the range given by the separators above it (see `MapBranch`). All blocks are
/// on one level. No block is empty, no branch has fewer than two children, and no node more than `full` entries or
/// children. Each has at least `least`, with three exceptions: the root; the last node of a level, so that ascending
/// keys fill the nodes before it; a block whose new separator could not be copied. Restructuring follows links and
/// never compares keys.
///
/// Owns its branches; the map owns the blocks, and owns the tree while it has two or more blocks.
template <class Key, class Value, std::uint32_t blockSize, std::uint32_t fanOut>
class MapTree {
public:
    using Block = MapBlock<Key, Value, blockSize, fanOut>;
    using Branch = MapBranch<Key, Value, blockSize, fanOut>;

    struct Place {
        Block* block;
        std::uint32_t index;
    };

    /// A tree over one block, which is split next.
    explicit MapTree(Block& only) : entries(only.size), root_(new Branch), last_(&only) {
        root_->setFirst(&only);
        only.links().tree = this;
    }
    MapTree(MapTree const&) = delete;
    MapTree& operator=(MapTree const&) = delete;
    /// Unlinks its only block, if it has no others.
    ~MapTree() {
        if (hasOneBlock()) root_->block(0).links() = {};
        destroy(root_);
    }

    [[nodiscard]] bool hasOneBlock() const noexcept { return root_->level == 0 && root_->size == 1; }
    [[nodiscard]] Block* last() const noexcept { return last_; }

    /// The block that contains or would contain `key`. Out of line, so that look-ups in small maps stay short.
    template <class Less, class K>
    [[nodiscard, gnu::noinline]] Block* find(K const& key) const {
        Branch const* branch = root_;
        while (branch->level > 0) branch = &branch->branch(branch->template childFor<Less>(key));
        return &branch->block(branch->template childFor<Less>(key));
    }

    /// Inserts a block after a full one and moves half of its entries there; none if `key`, to be inserted at `index`,
    /// comes last of all. Returns the new place of `key`. Changes nothing if it throws.
    Place split(Block& block, std::uint32_t index, Key const& key) {
        bool const comesLast = &block == last_ && index == Block::full;
        std::uint32_t const left = comesLast ? Block::full : Block::full / 2;
        Key separator(comesLast ? key : block[left].first);
        auto spares = sparesAbove(block);
        Block* const added = Block::make(Block::full);
        block.moveTail(left, *added);
        linkBehind(block, *added);
        insertBehind(&block, block.links().parent, std::move(separator), added, spares);
        return comesLast || index > left ? Place{added, index - left} : Place{&block, index};
    }

    /// Refills a block that has lost an entry from a neighbour, or merges the two. Returns the new place of the entry
    /// at `index`.
    Place refill(Block& block, std::uint32_t index) noexcept {
        if (block.size >= Block::least) return {&block, index};
        Branch& parent = *block.links().parent;
        std::uint32_t const right = std::max(parent.indexOf(&block), 1U);
        Block& first = parent.block(right - 1);
        Block& second = parent.block(right);
        if (&block == &second) index += first.size;
        std::uint32_t const both = first.size + second.size;
        if (both > Block::full) {
            share(first, second, both / 2, parent.separator(right));
            return index < first.size ? Place{&first, index} : Place{&second, index - first.size};
        }
        second.moveTail(0, first);
        unlink(second);
        Block::destroy(&second);
        parent.erase(right);
        refill(parent);
        return {&first, index};
    }

    std::size_t entries;

private:
    template <class Map>
    friend struct MapAudit;

    using Spares = std::vector<std::unique_ptr<Branch>>;

    static void destroy(Branch* branch) noexcept {
        for (std::uint32_t i = 0; branch->level > 0 && i < branch->size; ++i) destroy(&branch->branch(i));
        delete branch;
    }

    /// Allocates the branches that splitting the block will add.
    [[nodiscard]] static Spares sparesAbove(Block& block) {
        Spares spares;
        Branch const* branch = block.links().parent;
        for (; branch && branch->size == Branch::full; branch = branch->parent) spares.push_back(spare());
        if (!branch) spares.push_back(spare());
        return spares;
    }
    [[nodiscard]] static std::unique_ptr<Branch> spare() { return std::make_unique<Branch>(); }
    [[nodiscard]] static Branch* take(Spares& spares, std::uint32_t level) noexcept {
        Branch* const branch = spares.back().release();
        spares.pop_back();
        branch->level = level;
        return branch;
    }

    void linkBehind(Block& block, Block& added) noexcept {
        added.links() = {&block, block.next(), nullptr, this};
        (block.next() ? block.next()->links().previous : last_) = &added;
        block.links().next = &added;
    }
    /// Requires: a block before it.
    void unlink(Block& block) noexcept {
        (block.next() ? block.next()->links().previous : last_) = block.previous();
        block.previous()->links().next = block.next();
    }

    /// Inserts `added` into `branch` after `child`, and splits full branches upwards.
    void insertBehind(void const* child, Branch* branch, Key separator, void* added, Spares& spares) noexcept {
        while (true) {
            std::uint32_t const index = branch->indexOf(child) + 1;
            branch->insert(index, std::move(separator), added);
            if (branch->size <= Branch::full) return;
            if (!branch->parent) growAbove(branch, take(spares, branch->level + 1));
            Branch* const next = take(spares, branch->level);
            bool const comesLast = index == Branch::full && isLast(*branch);
            Key parting = branch->split(comesLast ? Branch::full - 1 : branch->size / 2, *next);
            std::destroy_at(&separator);
            new (&separator) Key(std::move(parting));
            child = branch;
            added = next;
            branch = branch->parent;
        }
    }
    void growAbove(Branch* formerRoot, Branch* root) noexcept {
        root->setFirst(formerRoot);
        root_ = root;
    }
    [[nodiscard]] static bool isLast(Branch const& branch) noexcept {
        for (Branch const* child = &branch; child->parent; child = child->parent) {
            if (child->parent->indexOf(child) + 1 < child->parent->size) return false;
        }
        return true;
    }

    /// Distributes the entries of two neighbours so that the first has `count`. Leaves them as they are if the
    /// separating key cannot be copied: erasing calls this and must not fail.
    static void share(Block& first, Block& second, std::uint32_t count, Key& separator) noexcept {
        try {
            Key parting(count < first.size ? first[count].first : second[count - first.size].first);
            std::destroy_at(&separator);
            new (&separator) Key(std::move(parting));
        } catch (...) {
            return;
        }
        Block::share(first, second, count);
    }

    /// Refills a branch that has lost a child, and its ancestors as long as branches are removed.
    void refill(Branch& branch) noexcept {
        Branch* const parent = branch.parent;
        if (!parent) return dropNeedlessRoot();
        if (branch.size >= Branch::least) return;
        std::uint32_t const right = std::max(parent->indexOf(&branch), 1U);
        Branch& first = parent->branch(right - 1);
        Branch& second = parent->branch(right);
        Key& parting = parent->separator(right);
        if (first.size + second.size > Branch::full) {
            return &branch == &first ? first.takeFirst(second, parting) : second.takeLast(first, parting);
        }
        first.takeAll(second, std::move(parting));
        delete &second;
        parent->erase(right);
        refill(*parent);
    }
    void dropNeedlessRoot() noexcept {
        if (root_->level == 0 || root_->size > 1) return;
        Branch* const needless = root_;
        root_ = &needless->branch(0);
        root_->parent = nullptr;
        delete needless;
    }

    Branch* root_;
    Block* last_;
};

}  // namespace ur::impl
