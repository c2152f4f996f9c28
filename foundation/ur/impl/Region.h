// Regions of equal nodes, and their source.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>

#include "foundation/ur/NodeSource.h"

namespace ur::impl {

struct Chunk;
class Heap;

/// An aligned memory block of nodes of one size; its header lies at its start.
struct Region {
    static constexpr std::size_t bytes = regionBytes;

    Heap* heap;
    Chunk* chunk;
    FreeNode* free;  // nodes freed since the heap last took all of them
    Region* previous;
    Region* next;
    std::uint32_t untilSettled;  // the number of nodes to free before the heap checks this region
    std::uint16_t nodes;         // the number that fits
    std::uint8_t sizeClass;
    bool listed;  // whether it is in its heap's list of regions with room

    [[nodiscard]] static Region* of(void const* node) {
        return reinterpret_cast<Region*>(reinterpret_cast<std::uintptr_t>(node) & ~std::uintptr_t(bytes - 1));
    }
};

static_assert(sizeof(Region) % 16 == 0, "nodes of a multiple of 16 bytes lie on multiples of 16");

/// Cuts regions from larger chunks; a chunk returns to the system when all its regions are free. Any thread.
class RegionSource {
public:
    /// Never destroyed: nodes may outlive every static object.
    static RegionSource& instance();

    /// Memory for one region, with only its `chunk` set. Throws `std::bad_alloc`.
    [[nodiscard]] Region* take();
    void put(Region* region) noexcept;
    /// The number of chunks, of which at most one is empty.
    [[nodiscard]] std::size_t chunkCount() noexcept;

private:
    void link(Chunk* chunk) noexcept;
    void unlink(Chunk* chunk) noexcept;

    std::mutex mutex_;
    Chunk* withRoom_ = nullptr;
    // Kept, so that alternately building and destroying a tree does not call the system each time.
    Chunk* empty_ = nullptr;
    std::size_t chunks_ = 0;
};

}  // namespace ur::impl
