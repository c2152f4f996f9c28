// Computes the sizes of trees with shared items in one walk over the items.
#include "plst/Expansion.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "plst/impl/ChildWalk.h"
#include "plst/impl/json/JsonNumberWriter.h"
#include "plst/visit.h"

namespace nxPLST {
namespace {

constexpr std::uint64_t unbounded = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t indentStep = 4;

void grow(std::uint64_t& sum, std::uint64_t by) {
    if (__builtin_add_overflow(sum, by, &sum)) sum = unbounded;
}

/// The text of an item without indentation, and the number of lines that one step of indentation lengthens.
struct Text {
    std::uint64_t bytes = 0;
    std::uint64_t lines = 0;

    /// Adds that of an indented child with its comma and line feed.
    void add(Text const& child) {
        grow(lines, child.lines);
        grow(lines, 1);
        grow(bytes, child.bytes);
        grow(bytes, 2 + indentStep);
        for (std::uint64_t space = 0; space < indentStep; ++space) grow(bytes, child.lines);
    }
};

struct Size {
    std::uint64_t items = 0;
    Text text;
    Text own;  ///< without what occurred before
};

std::uint64_t bytesOf(std::string_view text) {
    std::uint64_t bytes = text.size() + 2;
    for (char const c : text) {
        if (c == '"' || c == '\\' || (c >= '\b' && c <= '\r' && c != '\v')) {
            bytes += 1;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            bytes += 5;
        }
    }
    return bytes;
}

std::uint64_t bytesOf(double value) {
    char text[impl::numberRoom];
    return std::isfinite(value) ? static_cast<std::uint64_t>(impl::writeExactNumber(text, value) - text) : 0;
}

/// Remembers the sizes of items that may recur. Keeps its own stack, so that the depth of a tree does not matter.
class Expander {
public:
    Expansion run(Item const* root) {
        visit(root);
        while (!open_.empty()) step();
        grow(total_.text.bytes, 1);
        grow(total_.own.bytes, 1);
        return {total_.items, total_.text.bytes, total_.own.bytes, shares_};
    }

private:
    struct Open {
        Item const* item;
        impl::ChildWalk children;
        Size size;
    };

    [[nodiscard]] static Size sizeOf(Text const& text) { return {1, text, text}; }

    void step() {
        Open& innermost = open_.back();
        impl::ChildWalk& children = innermost.children;
        if (children.atEnd()) return close();
        Item const* child = nullptr;
        if (children.inDictionary()) {
            std::uint64_t const key = bytesOf(children.members.key().view()) + 2;
            grow(innermost.size.text.bytes, key);
            grow(innermost.size.own.bytes, key);
            child = children.members.item();
            children.members.advance();
        } else {
            child = children.elements.item();
            children.elements.advance();
        }
        visit(child);
    }

    void visit(Item const* item) {
        if (!item) return add(sizeOf({4, 0}));
        if (item->referenceCount() > 1) {
            auto const known = sizes_.find(item);
            if (known != sizes_.end()) {
                shares_ = true;
                return add({known->second.items, known->second.text, {}});
            }
        }
        nxPLST::visit(
            *item,
            [&](Bool const& truth) {
                finish(*item, sizeOf({truth.value() ? 4U : 5U, 0}));
            },
            [&](Double const& number) {
                finish(*item, sizeOf({bytesOf(number.value()), 0}));
            },
            [&](String const& text) {
                finish(*item, sizeOf({bytesOf(text.value().view()), 0}));
            },
            [&](auto const& container) { open(container); });
    }

    /// Two brackets and two line feeds; the last one replaces the last comma.
    template <class Container>
    void open(Container const& container) {
        open_.push_back({&container, impl::ChildWalk(container), sizeOf({container.empty() ? 4U : 2U, 1})});
    }

    void close() {
        Open const closed = open_.back();
        open_.pop_back();
        finish(*closed.item, closed.size);
    }

    void finish(Item const& item, Size const& size) {
        if (item.referenceCount() > 1) sizes_.emplace(&item, size);
        add(size);
    }

    /// Adds a child to its container.
    void add(Size const& child) {
        if (open_.empty()) {
            total_ = child;
            return;
        }
        Size& parent = open_.back().size;
        grow(parent.items, child.items);
        parent.text.add(child.text);
        parent.own.add(child.own);
    }

    std::vector<Open> open_;
    std::unordered_map<Item const*, Size> sizes_;
    Size total_;
    bool shares_ = false;
};

}  // namespace

Expansion expansionOf(Item const* root) { return Expander().run(root); }

}  // namespace nxPLST
