// Implements yajl's memory: the blocks are linked in a ring.
#include "plst/impl/json/YajlScan.h"

#include <cstdlib>
#include <new>

namespace nxPLST::impl {

YajlMemory::~YajlMemory() {
    for (Link* link = ring_.next; link != &ring_;) {
        Link* const next = link->next;
        std::free(link);
        link = next;
    }
}

void* YajlMemory::allocate(void* memory, std::size_t bytes) { return reallocate(memory, nullptr, bytes); }

void* YajlMemory::reallocate(void* memory, void* block, std::size_t bytes) {
    Link* const former = block ? static_cast<Link*>(block) - 1 : nullptr;
    auto* const link = static_cast<Link*>(std::realloc(former, sizeof(Link) + bytes));
    if (!link) throw std::bad_alloc();
    if (former) {
        link->previous->next = link->next->previous = link;
    } else {
        static_cast<YajlMemory*>(memory)->enter(link);
    }
    return link + 1;
}

void YajlMemory::deallocate(void* /*memory*/, void* block) noexcept {
    if (!block) return;
    Link* const link = static_cast<Link*>(block) - 1;
    link->previous->next = link->next;
    link->next->previous = link->previous;
    std::free(link);
}

void YajlMemory::enter(Link* link) noexcept {
    link->previous = &ring_;
    link->next = ring_.next;
    ring_.next = link->next->previous = link;
}

}  // namespace nxPLST::impl
