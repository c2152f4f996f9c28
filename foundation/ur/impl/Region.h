// Regions of equal nodes, and where they come from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>

#include "foundation/ur/NodeSource.h"

namespace ur::impl {

struct Chunk;
class Heap;

/// An aligned piece of memory holding nodes of one size; its header lies at its start.
struct Region {
    static constexpr std::size_t bytes = regionBytes;

    Heap* heap;
    Chunk* chunk;
    FreeNode* free;  // what came back since the heap took the last of them
    Region* previous;
    Region* next;
    std::uint32_t untilSettled;  // how many nodes come back before the heap looks at this region
    std::uint16_t nodes;         // as many as fit
    std::uint8_t sizeClass;
    bool listed;  // in its heap's list of regions with room

    [[nodiscard]] static Region* of(void const* node) {
        return reinterpret_cast<Region*>(reinterpret_cast<std::uintptr_t>(node) & ~std::uintptr_t(bytes - 1));
    }
};

static_assert(sizeof(Region) % 16 == 0, "nodes of a multiple of 16 bytes lie on multiples of 16");

/// Cuts regions from larger chunks; a chunk goes back to the system when all its regions are back. Any thread.
class RegionSource {
public:
    /// Never destroyed: nodes may outlive every static object.
    static RegionSource& instance();

    /// Memory for one region, with only its `chunk` set. Throws `std::bad_alloc`.
    [[nodiscard]] Region* take();
    void put(Region* region) noexcept;
    /// How many chunks it holds, of which at most one is empty.
    [[nodiscard]] std::size_t chunkCount() noexcept;

private:
    void link(Chunk* chunk) noexcept;
    void unlink(Chunk* chunk) noexcept;

    std::mutex mutex_;
    Chunk* withRoom_ = nullptr;
    // Kept, so that a tree made and dropped in turn does not go to the system each time.
    Chunk* empty_ = nullptr;
    std::size_t chunks_ = 0;
};

}  // namespace ur::impl
