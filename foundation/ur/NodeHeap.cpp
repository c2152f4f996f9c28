// Size-classed regions, owned by one thread each, that any thread may give nodes back to.
//
// Every thread has a heap; a heap has, for each node size, a list of regions that have room. A node given back
// by the heap's own thread goes onto its region's free list. A node given back by another thread goes onto the
// heap's `returned` stack, which the owner empties before it asks for a new region. When a thread ends, its
// heap waits, with all its regions, for the next thread that needs one; until then whoever returns nodes to it
// empties the stack now and then under the pool's lock. So heaps never outnumber the threads that ever ran at
// one time, and nothing that was given back stays out of reach.
#include "foundation/ur/NodeHeap.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <new>
#include <utility>

#include "foundation/ur/impl/Region.h"

// Under AddressSanitizer every node is an allocation of its own, so that use after release is seen.
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

#else

namespace impl {

constexpr std::size_t largestNode = 256;
constexpr std::size_t classCount = largestNode / Region::granule + 1;
constexpr unsigned returnsPerSweep = 1024;

/// The nodes of one thread, or of one that has ended.
class Heap {
public:
    void* allocate(std::size_t sizeClass) {
        Region* region = withRoom_[sizeClass];
        if (region && region->hasRoom()) [[likely]]
            return region->take();
        return refill(sizeClass)->take();
    }

    void giveBack(Region* region, void* node) noexcept {
        region->free = new (node) Node{region->free};
        --region->used;
        if (region->used == 0 || !region->listed) [[unlikely]]
            settle(region);
    }

    void giveBackFromElsewhere(void* node) noexcept {
        Node* head = returned_.load(std::memory_order_relaxed);
        Node* mine = nullptr;
        do {
            mine = new (node) Node{head};
        } while (!returned_.compare_exchange_weak(head, mine, std::memory_order_release, std::memory_order_relaxed));
    }

    /// Puts the nodes that other threads gave back where they belong. Owner only.
    void sweep() noexcept {
        Node* node = returned_.exchange(nullptr, std::memory_order_acquire);
        while (node) {
            Node* next = node->next;
            giveBack(Region::of(node), node);
            node = next;
        }
    }

    std::atomic<bool> pooled = false;
    Heap* nextPooled = nullptr;

private:
    Region* refill(std::size_t sizeClass) {
        if (returned_.load(std::memory_order_relaxed)) sweep();
        while (Region* region = withRoom_[sizeClass]) {
            if (region->hasRoom()) return region;
            unlist(region);
        }
        return addRegion(sizeClass);
    }

    Region* addRegion(std::size_t sizeClass) {
        Region* region = RegionSource::instance().take();
        region->heap = this;
        region->sizeClass = static_cast<std::uint16_t>(sizeClass);
        region->fresh = reinterpret_cast<char*>(region + 1);
        std::size_t const nodeBytes = sizeClass * Region::granule;
        region->end = region->fresh + (Region::bytes - sizeof(Region)) / nodeBytes * nodeBytes;
        list(region);
        return region;
    }

    /// A region that has just become usable again, or empty: the former is listed, the latter released, unless it
    /// is the one that nodes of its size come from.
    void settle(Region* region) noexcept {
        if (!region->listed) list(region);
        if (region->used > 0 || withRoom_[region->sizeClass] == region) return;
        unlist(region);
        RegionSource::instance().put(region);
    }

    /// The first region stays first while it has room, so that nodes asked for together lie together.
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
        if (withRoom_[region->sizeClass] == region) withRoom_[region->sizeClass] = region->next;
        region->listed = false;
    }

    Region* withRoom_[classCount] = {};
    std::atomic<Node*> returned_ = nullptr;
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

// Plain pointers, so that a look-up is one load and nodes may be given back after the thread's other locals went.
[[gnu::tls_model("initial-exec")]] constinit thread_local Heap* currentHeap = nullptr;
[[gnu::tls_model("initial-exec")]] constinit thread_local unsigned foreignReturns = 0;

/// Hands the heap on when its thread ends.
struct HeapGuard {
    ~HeapGuard() {
        if (Heap* heap = std::exchange(currentHeap, nullptr)) HeapPool::instance().put(heap);
    }
};

Heap* acquireHeap() {
    thread_local HeapGuard guard;
    currentHeap = HeapPool::instance().take();
    return currentHeap;
}

}  // namespace impl

using namespace impl;

void* allocateNode(std::size_t bytes) {
    if (bytes > largestNode) return ::operator new(bytes);
    Heap* heap = currentHeap;
    if (!heap) [[unlikely]]
        heap = acquireHeap();
    return heap->allocate(bytes ? (bytes + Region::granule - 1) / Region::granule : 1);
}

void deallocateNode(void* node, std::size_t bytes) noexcept {
    if (!node) return;
    if (bytes > largestNode) return ::operator delete(node);
    Region* region = Region::of(node);
    Heap* heap = region->heap;
    if (heap == currentHeap) [[likely]]
        return heap->giveBack(region, node);
    heap->giveBackFromElsewhere(node);
    if (++foreignReturns % returnsPerSweep == 0 && heap->pooled.load(std::memory_order_relaxed)) {
        HeapPool::instance().sweepIfPooled(heap);
    }
}

#endif

}  // namespace ur
