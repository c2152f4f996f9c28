// Stops writers from expanding shared items without limit.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "plst/Expansion.h"

namespace nxPLST::impl {

/// Limits the text of one tree. When the text is long and one of its items has several references, measures the tree
/// once; the text ends there if the tree shares items and would exceed the limit for such trees.
class ExpansionGuard {
public:
    explicit ExpansionGuard(std::uint64_t most) noexcept : most_(most), unchecked_(std::min(most, shortText)) {}

    void watch(Item const* root) noexcept { root_ = root; }
    /// Whether a text of `written` bytes may continue, with `next` if that is not null.
    [[nodiscard]] bool allows(std::size_t written, Item const* next) {
        mayShare_ |= next && next != root_ && next->referenceCount() > 1;
        return written <= unchecked_ || !mayShare_ || check();
    }

private:
    /// Shorter texts do not justify measuring the tree.
    static constexpr std::uint64_t shortText = std::uint64_t(16) << 20;

    bool check() {
        Expansion const expansion = expansionOf(root_);
        if (expansion.shares && expansion.textBytes > most_) return false;
        unchecked_ = std::numeric_limits<std::uint64_t>::max();
        return true;
    }

    Item const* root_ = nullptr;
    bool mayShare_ = false;
    std::uint64_t most_;
    std::uint64_t unchecked_;
};

}  // namespace nxPLST::impl
