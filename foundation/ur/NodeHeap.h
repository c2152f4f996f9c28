// Storage for the many small nodes of value trees.
#pragma once

#include <cstddef>
#include <new>

#include "foundation/ur/Export.h"

namespace ur {

/// Allocates `bytes` bytes, aligned as plain `new` would align any object of that size. Throws `std::bad_alloc`.
///
/// Made for trees of small nodes: sizes up to 256 bytes come from regions of one size each, have no header per node and
/// lie in the order of allocation. Any thread may allocate a node and any other may free it; neither waits for a lock.
/// A region's memory returns to the system when its last node is freed.
[[nodiscard]] NX_API void* allocateNode(std::size_t bytes);

/// Frees a node from `allocateNode(bytes)`; null is ignored.
NX_API void deallocateNode(void* node, std::size_t bytes) noexcept;

/// Base of classes whose objects are nodes; over-aligned objects come from the general allocator.
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

/// An allocator for standard containers that uses the node storage.
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
