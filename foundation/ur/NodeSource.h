// Allocates and frees the nodes of whole trees.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "foundation/ur/Export.h"
#include "foundation/ur/NodeHeap.h"

namespace ur {

namespace impl {

/// The size of the aligned memory regions that hold nodes of one size.
inline constexpr std::size_t regionBytes = 32 * 1024;
inline constexpr std::size_t largestNode = 256;
inline constexpr std::size_t nodeGranule = 8;

constexpr std::size_t sizeClassOf(std::size_t bytes) noexcept { return (bytes + nodeGranule - 1) / nodeGranule; }

/// A free node.
struct FreeNode {
    FreeNode* next;
};

/// The source of a thread's next nodes of one size.
struct NodeBin {
    char* fresh = nullptr;  ///< unused memory from here to `freshEnd`
    char* freshEnd = nullptr;
    FreeNode* free = nullptr;

    /// Null when it is empty.
    [[nodiscard]] void* take(std::size_t bytes) noexcept {
        if (fresh != freshEnd) [[likely]] {
            char* const node = fresh;
            fresh = node + bytes;
            return node;
        }
        FreeNode* const node = free;
        if (node) free = node->next;
        return node;
    }
};

/// This thread's bins, by size class.
[[nodiscard]] NX_API NodeBin* nodeBins();
/// Frees `count` nodes of one region, linked from `first` to `last`.
NX_API void giveBackNodes(FreeNode* first, FreeNode* last, std::uint32_t count) noexcept;

}  // namespace impl

/// Allocates as `allocateNode` does, nearly always without a call. For code that builds whole trees; stays on the
/// thread that created it.
class NodeSource {
public:
    NodeSource() : bins_(impl::nodeBins()) {}

    /// Throws `std::bad_alloc`.
    template <std::size_t bytes>
    [[nodiscard]] void* take() {
        constexpr std::size_t sizeClass = impl::sizeClassOf(bytes);
        static_assert(bytes > 0 && bytes <= impl::largestNode);
        void* const node = bins_[sizeClass].take(sizeClass * impl::nodeGranule);
        return node ? node : allocateNode(bytes);
    }

private:
    impl::NodeBin* bins_;
};

/// Frees as `deallocateNode` does, for many nodes of one size that lie near each other. For code that destroys whole
/// trees; its destructor frees the rest.
class NodeBatch {
public:
    NodeBatch() noexcept = default;
    NodeBatch(NodeBatch const&) = delete;
    NodeBatch& operator=(NodeBatch const&) = delete;
    ~NodeBatch() { giveBack(); }

    /// Requires: a node that is not larger than 256 bytes.
    void add(void* node) noexcept {
        auto const distance = reinterpret_cast<std::uintptr_t>(node) ^ reinterpret_cast<std::uintptr_t>(last_);
        auto* const added = static_cast<impl::FreeNode*>(node);
        if (distance >= impl::regionBytes) [[unlikely]] {
            giveBack();
            last_ = added;
            count_ = 0;
        }
        first_ = new (added) impl::FreeNode{first_};
        ++count_;
    }

private:
    void giveBack() noexcept {
        if (count_ > 0) impl::giveBackNodes(first_, last_, count_);
    }

    impl::FreeNode* first_ = nullptr;  ///< linked up to `last_`, whose own link is undefined
    impl::FreeNode* last_ = nullptr;
    std::uint32_t count_ = 0;
};

}  // namespace ur
