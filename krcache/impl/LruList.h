// Lists the resources that may be evicted, least recently used first.
#pragma once

#include <cstddef>

#include "krcache/Shim.h"

namespace urKRCache {

/// A circular list linked through the shims. It holds no references.
class LruList {
public:
    LruList() noexcept { sentinel_.makeSentinel(); }
    LruList(LruList const&) = delete;
    LruList& operator=(LruList const&) = delete;

    [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
    [[nodiscard]] std::size_t count() const noexcept { return count_; }
    /// The least recently used. Requires: not empty.
    [[nodiscard]] Shim& head() noexcept { return *sentinel_.next()->object(); }

    void append(Shim& shim) noexcept {
        shim.insertBefore(sentinel_);
        ++count_;
    }
    void remove(Shim& shim) noexcept {
        shim.unlink();
        --count_;
    }
    /// Makes a listed shim the most recently used.
    void touch(Shim& shim) noexcept {
        if (shim.next() != &sentinel_) shim.moveBefore(sentinel_);
    }

    /// The list from its head on.
    [[nodiscard]] urUtil::LinkedListNode<Shim> const& sentinel() const noexcept { return sentinel_; }

private:
    urUtil::LinkedListNode<Shim> sentinel_;
    std::size_t count_ = 0;
};

}  // namespace urKRCache
