// The memory of records: blocks that are filled one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "foundation/nxTXN/impl/Sizes.h"
#include "foundation/ur/containers.h"

namespace nxTXN::impl {

/// Allocates pieces of memory like a stack that can also be released from its bottom.
///
/// Pieces lie packed in blocks, so a piece takes only its bytes, and blocks are freed as a whole. Requires: sizes are
/// multiples of eight.
class RecordArena {
public:
    explicit RecordArena(Sizes const& sizes) noexcept
        : smallestBlock_(sizes.smallestBlock), largestBlock_(sizes.largestBlock) {}

    /// A place between two pieces.
    struct Place {
        std::uint32_t block = 0;
        std::uint32_t offset = 0;

        friend bool operator==(Place, Place) = default;
    };

    /// Ensures that the next `allocate(bytes)` cannot fail.
    void makeRoom(std::size_t bytes) {
        if (blocks_.empty() || blocks_.back().size - blocks_.back().used < bytes) addBlock(bytes);
    }
    [[nodiscard]] std::byte* allocate(std::size_t bytes);

    [[nodiscard]] Place bottom() const noexcept { return bottom_; }
    [[nodiscard]] Place top() const noexcept;
    /// The piece that begins at `place`, if there is one; `place` may move to the start of the next block.
    [[nodiscard]] std::byte* at(Place& place) noexcept {
        if (place.block < end()) [[likely]] {
            Block const& block = blocks_[place.block - first_];
            if (place.offset < block.used) return block.bytes.get() + place.offset;
        }
        return inNextBlock(place);
    }

    /// Frees the pieces above, or below, `place`.
    void truncate(Place place) noexcept;
    void trim(Place place) noexcept;

    /// The bytes allocated from the system, without the spare block.
    [[nodiscard]] std::size_t heldBytes() const noexcept;

    /// Moves a piece down to `to`, at or below its place, and `to` to the position after it. Anything between is lost.
    void slide(Place& to, std::byte const* piece, std::size_t bytes) noexcept;

private:
    struct Block {
        std::unique_ptr<std::byte[]> bytes;
        std::uint32_t size;
        std::uint32_t used;
    };

    [[nodiscard]] std::byte* inNextBlock(Place& place) noexcept;
    void addBlock(std::size_t bytes);
    [[nodiscard]] std::uint32_t end() const noexcept { return first_ + static_cast<std::uint32_t>(blocks_.size()); }

    std::size_t const smallestBlock_;
    std::size_t const largestBlock_;
    ur::vector<Block> blocks_;  // trimmed blocks have no bytes; they are removed when there are too many
    std::uint32_t first_ = 0;   // the number of the first of these
    Place bottom_;
    Block spare_ = {};  // the block freed last, so that crossing a boundary repeatedly does not allocate
};

}  // namespace nxTXN::impl
