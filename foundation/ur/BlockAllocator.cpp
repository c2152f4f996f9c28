// A free list threaded through blocks of equal nodes.
#include "foundation/ur/BlockAllocator.h"

#include <algorithm>
#include <utility>

namespace ur {
namespace {

struct FreeBlock {
    FreeBlock* next;
};

std::size_t roundedUp(std::size_t bytes) {
    constexpr std::size_t unit = alignof(std::max_align_t);
    return (std::max(bytes, sizeof(FreeBlock)) + unit - 1) / unit * unit;
}

}  // namespace

BlockAllocator::BlockAllocator(std::size_t nodeBytes, std::size_t nodesPerBlock)
    : nodeBytes_(roundedUp(nodeBytes)), nodesPerBlock_(std::max<std::size_t>(nodesPerBlock, 1)) {}

void* BlockAllocator::allocate() {
    if (!free_) addBlock();
    auto* node = static_cast<FreeBlock*>(free_);
    free_ = node->next;
    ++used_;
    return node;
}

void BlockAllocator::deallocate(void* node) noexcept {
    if (!node) return;
    free_ = new (node) FreeBlock{static_cast<FreeBlock*>(free_)};
    --used_;
}

void BlockAllocator::addBlock() {
    blocks_.push_back(std::make_unique<std::byte[]>(nodeBytes_ * nodesPerBlock_));
    std::byte* block = blocks_.back().get();
    // Linked from the back, so that nodes are allocated in address order.
    for (std::size_t i = nodesPerBlock_; i-- > 0;) {
        free_ = new (block + i * nodeBytes_) FreeBlock{static_cast<FreeBlock*>(free_)};
    }
}

}  // namespace ur
