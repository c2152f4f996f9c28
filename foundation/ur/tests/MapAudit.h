// Checks every invariant of an ordered map.
#pragma once

#include <cstdint>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "foundation/ur/BlockMap.h"

namespace ur::impl {

/// Walks the whole map. Keys can be written to a stream.
template <class Map>
struct MapAudit {
    using Block = typename Map::Block;
    using Branch = typename Block::Branch;
    using Key = typename Map::key_type;
    using Less = typename Map::key_compare;

    enum class Fill { least, any };

    /// The faults found, or an empty text. With `any`, blocks may have fewer than the least number of entries.
    static std::string faults(Map const& map, Fill fill = Fill::least) { return MapAudit(map, fill).check(); }
    /// The nodes and separators from the root down: maps with equal text behave alike.
    static std::string structure(Map const& map) { return MapAudit(map, Fill::any).drawn(); }
    /// 1 for a map of one block.
    static std::uint32_t levels(Map const& map) { return root(map) ? root(map)->level + 2 : 1; }

private:
    MapAudit(Map const& map, Fill fill) : map_(map), fill_(fill) {}

    static Branch* root(Map const& map) {
        return map.first_ && map.first_->tree() ? map.first_->tree()->root_ : nullptr;
    }

    std::string check() {
        if (Branch* const top = root(map_)) {
            require(!top->parent, "the root has a parent");
            checkBranch(*top, nullptr, nullptr, true);
        } else if (map_.first_) {
            checkEntries(*map_.first_, nullptr, nullptr);
            blocks_.push_back(map_.first_);
        }
        checkLinks();
        if (faults_.empty()) checkLookUps();  // needs a sound structure
        return faults_;
    }

    void checkBranch(Branch& branch, Key const* low, Key const* high, bool isLast) {
        std::uint32_t const least = isLast || !branch.parent ? 2 : Branch::least;
        require(branch.size >= least && branch.size <= Branch::full, "a branch has too few or too many children");
        for (std::uint32_t i = 0; i < branch.size; ++i) {
            Key const* const from = i > 0 ? &branch.separator(i) : low;
            Key const* const to = i + 1 < branch.size ? &branch.separator(i + 1) : high;
            require(!from || !to || Less()(*from, *to), "separators do not ascend");
            checkChild(branch, i, from, to, isLast && i + 1 == branch.size);
        }
    }
    void checkChild(Branch& branch, std::uint32_t index, Key const* from, Key const* to, bool isLast) {
        if (branch.level > 0) {
            Branch& child = branch.branch(index);
            require(child.parent == &branch && child.level + 1 == branch.level, "a branch is linked to another parent");
            return checkBranch(child, from, to, isLast);
        }
        Block& block = branch.block(index);
        require(block.capacity == Block::full && block.links().parent == &branch, "a block has another parent");
        require(block.tree() == map_.first_->tree(), "a block has another tree");
        require(block.size >= (isLast || fill_ == Fill::any ? 1 : Block::least), "a block has too few entries");
        checkEntries(block, from, to);
        blocks_.push_back(&block);
    }
    void checkEntries(Block& block, Key const* from, Key const* to) {
        require(block.size > 0 || block.capacity > 0, "a block without room");
        require(block.size <= block.capacity && block.capacity <= Block::full, "a block has too many entries");
        for (std::uint32_t i = 0; i < block.size; ++i) {
            Key const& key = block[i].first;
            require(i == 0 || Less()(block[i - 1].first, key), "keys do not ascend");
            require((!from || !Less()(key, *from)) && (!to || Less()(key, *to)), "a key lies outside its separators");
        }
        entries_ += block.size;
    }
    void checkLinks() {
        for (std::size_t i = 0; i < blocks_.size(); ++i) {
            require(blocks_[i]->previous() == (i > 0 ? blocks_[i - 1] : nullptr), "a wrong link backwards");
            require(blocks_[i]->next() == (i + 1 < blocks_.size() ? blocks_[i + 1] : nullptr), "a wrong link forwards");
        }
        require(map_.first_ == (blocks_.empty() ? nullptr : blocks_.front()), "another block is the first");
        require(map_.last() == (blocks_.empty() ? nullptr : blocks_.back()), "another block is the last");
        require(map_.size() == entries_ && map_.empty() == (entries_ == 0), "the count is wrong");
    }
    void checkLookUps() {
        std::size_t walked = 0;
        for (auto at = map_.begin(); at != map_.end(); ++at, ++walked) {
            require(map_.find(at->first) == at && map_.lower_bound(at->first) == at, "an entry is not found");
            require(map_.upper_bound(at->first) == std::next(at), "what comes after an entry is not found");
            require(at == map_.begin() || std::next(std::prev(at)) == at, "the way back is another one");
        }
        require(walked == entries_, "the walk misses entries");
    }

    std::string drawn() {
        std::ostringstream out;
        if (Branch* const top = root(map_)) {
            draw(out, *top);
        } else if (map_.first_) {
            out << map_.first_->capacity;
            draw(out, *map_.first_);
        }
        return out.str();
    }
    void draw(std::ostream& out, Branch& branch) {
        out << '(';
        for (std::uint32_t i = 0; i < branch.size; ++i) {
            if (i > 0) out << ' ' << branch.separator(i) << ' ';
            branch.level > 0 ? draw(out, branch.branch(i)) : draw(out, branch.block(i));
        }
        out << ')';
    }
    void draw(std::ostream& out, Block& block) {
        out << '[';
        for (std::uint32_t i = 0; i < block.size; ++i) out << block[i].first << ',';
        out << ']';
    }

    void require(bool holds, char const* fault) {
        if (!holds && faults_.empty()) faults_ = fault;
    }

    Map const& map_;
    Fill fill_;
    std::vector<Block*> blocks_;
    std::size_t entries_ = 0;
    std::string faults_;
};

}  // namespace ur::impl
