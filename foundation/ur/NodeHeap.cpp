// Node storage: size-classed regions, each owned by one thread; any thread may free nodes into them.
//
// Every thread has a heap. For each node size, a heap has a list of regions with room and takes all free nodes of one
// region at a time. A node freed by the heap's own thread goes to its region's free list. A node freed by another
// thread goes to the heap's `returned` stack, which the owner empties before it looks for another region. When a thread
// ends, its heap waits with all its regions for the next thread that needs one; meanwhile threads that free nodes into
// it empty the stack now and then under the pool's lock. So there are never more heaps than threads that ran at one
// time, and no freed node becomes unreachable.
#include "foundation/ur/NodeHeap.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <new>
#include <utility>

#include "foundation/ur/impl/Region.h"

// Under AddressSanitizer every node is a separate allocation, so that use after free is detected.
#if defined(__SANITIZE_ADDRESS__)
#define NX_PLAIN_NODES 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define NX_PLAIN_NODES 1
#endif
#endif

namespace ur {

#if defined(NX_PLAIN_NODES)

void* allocateNode(std::size_t bytes) { return ::operator new(bytes); }
void deallocateNode(void* node, std::size_t /*bytes*/) noexcept { ::operator delete(node); }

namespace impl {

NodeBin* nodeBins() {
    static constinit NodeBin empty[sizeClassOf(largestNode) + 1];
    return empty;
}
void giveBackNodes(FreeNode* first, FreeNode* /*last*/, std::uint32_t count) noexcept {
    for (; count > 0; --count) ::operator delete(std::exchange(first, first->next));
}

}  // namespace impl

#else

namespace impl {

constexpr unsigned returnsPerSweep = 1024;

/// The nodes of one thread, which may have ended.
class Heap {
public:
    [[nodiscard]] NodeBin* bins() noexcept { return bins_; }

    void* allocate(std::size_t sizeClass) {
        void* const node = bins_[sizeClass].take(sizeClass * nodeGranule);
        return node ? node : allocateFromOther(sizeClass);
    }

    void giveBack(Region* region, FreeNode* first, FreeNode* last, std::uint32_t count) noexcept {
        last->next = region->free;
        region->free = first;
        if (region->untilSettled <= count) [[unlikely]]
            return settle(region, count);
        region->untilSettled -= count;
    }

    void giveBackFromElsewhere(FreeNode* first, FreeNode* last) noexcept {
        last->next = returned_.load(std::memory_order_relaxed);
        while (
            !returned_.compare_exchange_weak(last->next, first, std::memory_order_release, std::memory_order_relaxed)) {
        }
    }

    /// Returns the nodes freed by other threads to their regions. Owner only.
    void sweep() noexcept {
        FreeNode* node = returned_.exchange(nullptr, std::memory_order_acquire);
        while (node) {
            FreeNode* const next = node->next;
            giveBack(Region::of(node), node, node, 1);
            node = next;
        }
    }

    std::atomic<bool> pooled = false;
    Heap* nextPooled = nullptr;

private:
    [[gnu::noinline]] void* allocateFromOther(std::size_t sizeClass) {
        refill(sizeClass);
        return allocate(sizeClass);
    }

    /// Fills the empty bin with all free nodes of one region, which then count as being in use.
    void refill(std::size_t sizeClass) {
        if (returned_.load(std::memory_order_relaxed)) sweep();
        while (Region* const region = withRoom_[sizeClass]) {
            if (region->free) {
                bins_[sizeClass].free = std::exchange(region->free, nullptr);
                region->untilSettled = region->nodes;
                return;
            }
            unlist(region);
            region->untilSettled = 1;
        }
        addRegion(sizeClass);
    }

    void addRegion(std::size_t sizeClass) {
        Region* region = RegionSource::instance().take();
        std::size_t const nodeBytes = sizeClass * nodeGranule;
        std::size_t const nodes = (Region::bytes - sizeof(Region)) / nodeBytes;
        region->heap = this;
        region->sizeClass = static_cast<std::uint8_t>(sizeClass);
        region->nodes = static_cast<std::uint16_t>(nodes);
        region->untilSettled = region->nodes;
        NodeBin& bin = bins_[sizeClass];
        bin.fresh = reinterpret_cast<char*>(region + 1);
        bin.freshEnd = bin.fresh + nodes * nodeBytes;
        list(region);
    }

    /// Checks a region to which `count` nodes were returned since the last check. Lists a region that has become usable
    /// again, and releases an empty one, unless nodes of its size currently come from it.
    void settle(Region* region, std::uint32_t count) noexcept {
        if (!region->listed) {
            list(region);
            region->untilSettled = region->nodes;
        }
        region->untilSettled -= count;
        if (region->untilSettled > 0 || withRoom_[region->sizeClass] == region) return;
        unlist(region);
        RegionSource::instance().put(region);
    }

    /// The first region stays first while it has room, so that nodes allocated together lie together.
    void list(Region* region) noexcept {
        Region*& first = withRoom_[region->sizeClass];
        region->listed = true;
        if (!first) {
            region->previous = region->next = nullptr;
            first = region;
            return;
        }
        region->previous = first;
        region->next = first->next;
        if (first->next) first->next->previous = region;
        first->next = region;
    }

    void unlist(Region* region) noexcept {
        if (region->previous) region->previous->next = region->next;
        if (region->next) region->next->previous = region->previous;
        Region*& first = withRoom_[region->sizeClass];
        if (first == region) first = region->next;
        region->listed = false;
    }

    static constexpr std::size_t sizeClasses = sizeClassOf(largestNode) + 1;

    NodeBin bins_[sizeClasses];  // nodes taken from the first region with room
    Region* withRoom_[sizeClasses] = {};
    std::atomic<FreeNode*> returned_ = nullptr;
};

/// The heaps of threads that have ended. Never destroyed: nodes may outlive every static object.
class HeapPool {
public:
    static HeapPool& instance() {
        static auto* pool = new HeapPool;
        return *pool;
    }

    Heap* take() {
        std::lock_guard lock(mutex_);
        if (!first_) return new Heap;
        Heap* heap = std::exchange(first_, first_->nextPooled);
        heap->pooled.store(false, std::memory_order_relaxed);
        return heap;
    }

    void put(Heap* heap) noexcept {
        std::lock_guard lock(mutex_);
        heap->sweep();
        heap->nextPooled = first_;
        first_ = heap;
        heap->pooled.store(true, std::memory_order_relaxed);
    }

    void sweepIfPooled(Heap* heap) noexcept {
        std::lock_guard lock(mutex_);
        if (heap->pooled.load(std::memory_order_relaxed)) heap->sweep();
    }

private:
    std::mutex mutex_;
    Heap* first_ = nullptr;
};

// Plain pointers, so that a look-up is one load and nodes may be freed after the thread's other locals are destroyed.
[[gnu::tls_model("initial-exec")]] constinit thread_local Heap* currentHeap = nullptr;
[[gnu::tls_model("initial-exec")]] constinit thread_local unsigned foreignReturns = 0;

/// Passes the heap on when its thread ends.
struct HeapGuard {
    ~HeapGuard() {
        if (Heap* heap = std::exchange(currentHeap, nullptr)) HeapPool::instance().put(heap);
    }
};

[[gnu::noinline]] Heap& acquireHeap() {
    thread_local HeapGuard guard;
    currentHeap = HeapPool::instance().take();
    return *currentHeap;
}

Heap& heapOfThread() {
    Heap* const heap = currentHeap;
    return heap ? *heap : acquireHeap();
}

NodeBin* nodeBins() { return heapOfThread().bins(); }

/// Frees linked nodes of a region of another thread's heap.
[[gnu::noinline]] void giveBackElsewhere(Heap* heap, FreeNode* first, FreeNode* last, std::uint32_t count) noexcept {
    heap->giveBackFromElsewhere(first, last);
    unsigned const before = foreignReturns / returnsPerSweep;
    foreignReturns += count;
    bool const isDue = foreignReturns / returnsPerSweep != before;
    if (isDue && heap->pooled.load(std::memory_order_relaxed)) HeapPool::instance().sweepIfPooled(heap);
}

void giveBackNodes(FreeNode* first, FreeNode* last, std::uint32_t count) noexcept {
    Region* const region = Region::of(first);
    Heap* const heap = region->heap;
    if (heap == currentHeap) [[likely]]
        return heap->giveBack(region, first, last, count);
    giveBackElsewhere(heap, first, last, count);
}

}  // namespace impl

using namespace impl;

void* allocateNode(std::size_t bytes) {
    if (bytes > largestNode) [[unlikely]]
        return ::operator new(bytes);
    return heapOfThread().allocate(bytes ? sizeClassOf(bytes) : 1);
}

void deallocateNode(void* node, std::size_t bytes) noexcept {
    if (bytes > largestNode) [[unlikely]]
        return ::operator delete(node);
    if (!node) return;
    auto* const returned = new (node) FreeNode{};
    giveBackNodes(returned, returned, 1);
}

#endif

}  // namespace ur
