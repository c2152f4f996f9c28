// A pool of equal nodes, allocated in blocks and freed together.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "foundation/ur/Export.h"

namespace ur {

/// Allocates nodes of one size, a block of nodes at a time; the destructor frees all memory.
///
/// Freed nodes are reused first. The caller owns the objects in the nodes: the allocator runs no destructor. One thread
/// at a time.
class NX_API BlockAllocator {
public:
    /// Nodes of `nodeBytes` bytes (rounded up to the strictest alignment), `nodesPerBlock` at a time (at least one).
    BlockAllocator(std::size_t nodeBytes, std::size_t nodesPerBlock);
    BlockAllocator(BlockAllocator const&) = delete;
    BlockAllocator& operator=(BlockAllocator const&) = delete;

    [[nodiscard]] void* allocate();
    void deallocate(void* node) noexcept;

    [[nodiscard]] std::size_t nodeSize() const noexcept { return nodeBytes_; }
    [[nodiscard]] std::size_t nodesPerBlock() const noexcept { return nodesPerBlock_; }
    /// The number of nodes in use.
    [[nodiscard]] std::size_t size() const noexcept { return used_; }

private:
    void addBlock();

    std::size_t nodeBytes_;
    std::size_t nodesPerBlock_;
    std::size_t used_ = 0;
    void* free_ = nullptr;
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
};

}  // namespace ur
