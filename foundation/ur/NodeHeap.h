// Storage for the many small nodes of value trees.
#pragma once

#include <cstddef>
#include <new>

#include "foundation/ur/Export.h"

namespace ur {

/// Storage of `bytes` bytes, aligned for any object of that size that plain `new` would do for. Throws
/// `std::bad_alloc`.
///
/// Made for trees of small nodes: sizes up to 256 bytes come from regions that hold one size each, cost no
/// header per node and lie in the order in which they were asked for. Any thread may take a node, any other
/// may give it back: neither waits for a lock, and a region's memory returns to the system when its last node
/// is gone.
[[nodiscard]] NX_API void* allocateNode(std::size_t bytes);

/// Gives back what `allocateNode(bytes)` gave; null is ignored.
NX_API void deallocateNode(void* node, std::size_t bytes) noexcept;

/// A base of classes whose objects are nodes; those with more alignment than usual come from the general allocator.
struct NodeAllocated {
    static void* operator new(std::size_t bytes) { return allocateNode(bytes); }
    static void* operator new(std::size_t bytes, std::align_val_t alignment) {
        return ::operator new(bytes, alignment);
    }
    static void operator delete(void* node, std::size_t bytes) noexcept { deallocateNode(node, bytes); }
    static void operator delete(void* node, std::size_t /*bytes*/, std::align_val_t alignment) noexcept {
        ::operator delete(node, alignment);
    }
};

/// The same storage for the standard's containers.
template <class T>
struct NodeAllocator {
    using value_type = T;

    NodeAllocator() noexcept = default;
    template <class U>
    NodeAllocator(NodeAllocator<U> const& /*other*/) noexcept {}

    [[nodiscard]] T* allocate(std::size_t count) { return static_cast<T*>(allocateNode(count * sizeof(T))); }
    void deallocate(T* node, std::size_t count) noexcept { deallocateNode(node, count * sizeof(T)); }

    friend bool operator==(NodeAllocator, NodeAllocator) noexcept { return true; }
};

}  // namespace ur
