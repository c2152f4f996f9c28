// Counts the parts of a tree in one walk.
#include "tools/nxplist/Statistics.h"

#include <algorithm>
#include <unordered_set>

#include "plst/visit.h"
#include "tools/nxplist/Walk.h"

namespace nxplist {
namespace {

using nxPLST::Item;

/// An open container, with the totals found below it so far.
struct OpenTree {
    Children children;
    std::uint64_t items;
    std::uint64_t bytes;
};

std::uint64_t heapBytes(urString::CString const& text) {
    constexpr std::size_t heldInPlace = 15;
    return text.capacity() > heldInPlace ? text.capacity() + 1 : 0;
}

std::uint64_t ownBytes(Item const& item) {
    return nxPLST::visit(
        item, [](nxPLST::String const& text) { return sizeof text + heapBytes(text.value()); },
        [](nxPLST::Array const& array) {
            return sizeof array + array.array().capacity() * sizeof(ur::Reference<Item>);
        },
        [](nxPLST::Dictionary const& dictionary) {
            return sizeof dictionary + dictionary.dictionary().size() * sizeof(nxPLST::Dictionary::Map::value_type);
        },
        [](auto const& scalar) { return sizeof scalar; });
}

class Counter {
public:
    explicit Counter(std::size_t wanted) : wanted_(wanted) {}

    Statistics count(Item const& root) {
        enter(root);
        while (!open_.empty()) {
            if (open_.back().children.done()) {
                leave();
                continue;
            }
            countKey();
            Item const* const child = open_.back().children.item();
            if (child && isNew(*child)) {
                enter(*child);
            } else {
                open_.back().children.next();
            }
        }
        return std::move(result_);
    }

private:
    /// False for an item that was met before. Only items with several holders can be.
    bool isNew(Item const& item) { return item.referenceCount() == 1 || shared_.insert(&item).second; }

    /// Counts `item`. A container stays open; its parent continues after it is closed.
    void enter(Item const& item) {
        std::uint64_t const bytes = ownBytes(item);
        ++result_.countByType[item.type()];
        if (isContainer(&item)) {
            open_.push_back({Children(item), 1, bytes});
            result_.depth = std::max<std::uint64_t>(result_.depth, open_.size());
        } else {
            add(1, bytes);
        }
    }

    void leave() {
        OpenTree const left = open_.back();
        // A container deeper than this is inside enough larger subtrees.
        if (open_.size() > 1 && open_.size() <= wanted_ + 1) offer(left);
        open_.pop_back();
        add(left.items, left.bytes);
    }

    /// Adds a finished child to its container, or to the whole.
    void add(std::uint64_t items, std::uint64_t bytes) {
        if (open_.empty()) {
            result_.bytes = bytes;
            return;
        }
        open_.back().items += items;
        open_.back().bytes += bytes;
        open_.back().children.next();
    }

    void countKey() {
        OpenTree& parent = open_.back();
        if (parent.children.container().type() != nxPLST::DictionaryType) return;
        ++result_.keys;
        parent.bytes += heapBytes(parent.children.key());
    }

    void offer(OpenTree const& subtree) {
        auto& largest = result_.largest;
        if (largest.size() == wanted_ && (wanted_ == 0 || largest.back().bytes >= subtree.bytes)) return;
        auto const smaller = [&](Statistics::Subtree const& other) { return other.bytes < subtree.bytes; };
        largest.insert(std::ranges::find_if(largest, smaller), {path(), subtree.items, subtree.bytes});
        if (largest.size() > wanted_) largest.pop_back();
    }

    /// The path of the innermost open container.
    std::string path() const {
        std::string text;
        for (std::size_t i = 0; i + 1 < open_.size(); ++i) text += open_[i].children.step();
        return text;
    }

    std::size_t wanted_;
    std::vector<OpenTree> open_;
    std::unordered_set<Item const*> shared_;
    Statistics result_;
};

}  // namespace

Statistics statisticsOf(Item const& root, std::size_t subtrees) { return Counter(subtrees).count(root); }

}  // namespace nxplist
