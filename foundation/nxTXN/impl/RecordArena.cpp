// Blocks that double in size up to a limit; a piece larger than that has a block of its own.
#include "foundation/nxTXN/impl/RecordArena.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace nxTXN::impl {

std::byte* RecordArena::allocate(std::size_t bytes) {
    makeRoom(bytes);
    Block& block = blocks_.back();
    return block.bytes.get() + std::exchange(block.used, block.used + static_cast<std::uint32_t>(bytes));
}

void RecordArena::addBlock(std::size_t bytes) {
    if (spare_.size >= bytes) {
        blocks_.push_back(std::exchange(spare_, {}));
        return;
    }
    std::size_t const doubled = blocks_.empty() ? 0 : 2 * std::size_t(blocks_.back().size);
    std::size_t const size = std::max(std::clamp(doubled, smallestBlock_, largestBlock_), bytes);
    blocks_.push_back({std::make_unique_for_overwrite<std::byte[]>(size), static_cast<std::uint32_t>(size), 0});
}

RecordArena::Place RecordArena::top() const noexcept {
    if (blocks_.empty()) return {first_, 0};
    return {end() - 1, blocks_.back().used};
}

std::byte* RecordArena::inNextBlock(Place& place) noexcept {
    while (place.block + 1 < end()) {
        place = {place.block + 1, 0};
        Block const& block = blocks_[place.block - first_];
        if (block.used > 0) return block.bytes.get();
    }
    return nullptr;
}

void RecordArena::truncate(Place place) noexcept {
    while (!blocks_.empty() && (end() - 1 > place.block || (end() - 1 == place.block && place.offset == 0))) {
        if (blocks_.back().size > spare_.size && blocks_.back().size <= largestBlock_) {
            spare_ = std::move(blocks_.back());
            spare_.used = 0;
        }
        blocks_.pop_back();
    }
    if (!blocks_.empty() && end() - 1 == place.block) blocks_.back().used = place.offset;
}

void RecordArena::slide(Place& to, std::byte const* piece, std::size_t bytes) noexcept {
    // The piece fits where it is now, so the loop finds a block with room there at the latest.
    Block* block = &blocks_[to.block - first_];
    for (; block->size - to.offset < bytes; block = &blocks_[to.block - first_]) {
        block->used = to.offset;
        to = {to.block + 1, 0};
    }
    std::memmove(block->bytes.get() + to.offset, piece, bytes);
    to.offset += static_cast<std::uint32_t>(bytes);
}

void RecordArena::trim(Place place) noexcept {
    for (std::uint32_t i = bottom_.block; i < place.block; ++i) blocks_[i - first_] = {};
    bottom_ = place;
    std::uint32_t const trimmed = place.block - first_;
    if (trimmed <= blocks_.size() / 2) return;
    blocks_.erase(blocks_.begin(), blocks_.begin() + trimmed);
    first_ = place.block;
}

std::size_t RecordArena::heldBytes() const noexcept {
    std::size_t bytes = blocks_.size() * sizeof(Block);
    for (Block const& block : blocks_) bytes += block.bytes ? block.size : 0;
    return bytes;
}

}  // namespace nxTXN::impl
