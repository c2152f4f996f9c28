// Replaces the program's allocation functions. The linker redirects every call here; see CMakeLists.txt.
#include "tests/faults/Allocations.h"

#include <cstdlib>
#include <new>

#include "foundation/ur/NodeSource.h"

namespace {

std::size_t left = 0;  // allocations until the one that fails, which is number 1; 0 for none
faults::Allocations::Then afterwards = faults::Allocations::Then::recover;
bool exhausted = false;  // every allocation fails
std::ptrdiff_t blocks = 0;

bool fails() noexcept {
    if (left == 0 || --left > 0) return exhausted;
    exhausted = afterwards == faults::Allocations::Then::fail;
    return true;
}

/// Counts the block; null means that the allocation failed.
template <class T>
T* counted(T* block) noexcept {
    if (block) ++blocks;
    return block;
}

void dropped(void const* block) noexcept {
    if (block) --blocks;
}

}  // namespace

namespace faults {

Allocations::Allocations(std::size_t failing, Then then) noexcept {
    left = failing + 1;
    afterwards = then;
}
Allocations::~Allocations() {
    left = 0;
    exhausted = false;
}
bool Allocations::failed() const noexcept { return left == 0; }
std::ptrdiff_t Allocations::live() noexcept { return blocks; }

}  // namespace faults

// The names that the linker's option --wrap expects.
extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
void* __real_realloc(void* block, std::size_t bytes);
void __real_free(void* block);
void* __real__ZN2ur12allocateNodeEm(std::size_t bytes);
void __real__ZN2ur14deallocateNodeEPvm(void* node, std::size_t bytes);
void __real__ZN2ur4impl13giveBackNodesEPNS0_8FreeNodeES2_j(void* first, void* last, std::uint32_t count);

void* __wrap_malloc(std::size_t bytes) { return fails() ? nullptr : counted(__real_malloc(bytes)); }
void* __wrap_calloc(std::size_t count, std::size_t bytes) {
    return fails() ? nullptr : counted(__real_calloc(count, bytes));
}
void* __wrap_realloc(void* block, std::size_t bytes) {
    if (fails()) return nullptr;
    void* const moved = __real_realloc(block, bytes);
    return block ? moved : counted(moved);
}
void __wrap_free(void* block) {
    dropped(block);
    __real_free(block);
}
void* __wrap__ZN2ur12allocateNodeEm(std::size_t bytes) {
    if (fails()) throw std::bad_alloc();
    return counted(__real__ZN2ur12allocateNodeEm(bytes));
}
void __wrap__ZN2ur14deallocateNodeEPvm(void* node, std::size_t bytes) {
    dropped(node);
    __real__ZN2ur14deallocateNodeEPvm(node, bytes);
}
/// Returns empty bins, so that every node needs a call.
ur::impl::NodeBin* __wrap__ZN2ur4impl8nodeBinsEv() {
    static constinit ur::impl::NodeBin empty[ur::impl::sizeClassOf(ur::impl::largestNode) + 1];
    return empty;
}
void __wrap__ZN2ur4impl13giveBackNodesEPNS0_8FreeNodeES2_j(void* first, void* last, std::uint32_t count) {
    blocks -= count;
    __real__ZN2ur4impl13giveBackNodesEPNS0_8FreeNodeES2_j(first, last, count);
}
}

// All forms, because sanitizers define each one.
void* operator new(std::size_t bytes) {
    void* const block = __wrap_malloc(bytes);
    if (!block) throw std::bad_alloc();
    return block;
}
void* operator new(std::size_t bytes, std::align_val_t alignment) {
    void* const block = fails() ? nullptr : std::aligned_alloc(static_cast<std::size_t>(alignment), bytes);
    if (!block) throw std::bad_alloc();
    return counted(block);
}
void* operator new[](std::size_t bytes) { return operator new(bytes); }
void* operator new(std::size_t bytes, std::nothrow_t const& /*tag*/) noexcept { return __wrap_malloc(bytes); }
void* operator new[](std::size_t bytes, std::nothrow_t const& /*tag*/) noexcept { return __wrap_malloc(bytes); }
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, std::align_val_t /*alignment*/) noexcept { __wrap_free(block); }
void operator delete[](void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, std::size_t /*bytes*/) noexcept { __wrap_free(block); }
void operator delete[](void* block, std::size_t /*bytes*/) noexcept { __wrap_free(block); }
