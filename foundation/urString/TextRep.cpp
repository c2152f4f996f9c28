// Allocates and frees the heap block of a long text.
#include "foundation/urString/TextRep.h"

#include <cstdlib>
#include <new>
#include <stdexcept>

#include "foundation/ur/NodeHeap.h"

namespace urString::impl {

namespace {

constexpr std::size_t smallestBlock = 16;

/// The code of the smallest block of at least `bytes` bytes.
unsigned blockCode(std::size_t bytes) {
    std::size_t const last = (bytes < smallestBlock ? smallestBlock : bytes) - 1;
    // The three leading bits, rounded up, select the step within the octave; eight of them are the next octave.
    unsigned const shift = last < smallestBlock ? 2 : static_cast<unsigned>(std::bit_width(last)) - 3;
    return (shift - 2) * 4 + static_cast<unsigned>(last >> shift) + 1 - 4;
}

/// Blocks from this size on come from the C library, whose `realloc` moves them without copying.
constexpr std::size_t smallestMovable = 64 * 1024;

char* allocate(std::size_t bytes) {
    if (bytes < smallestMovable) return static_cast<char*>(ur::allocateNode(bytes));
    void* const block = std::malloc(bytes);
    if (!block) throw std::bad_alloc();
    return static_cast<char*>(block);
}

unsigned codeFor(std::size_t capacity) {
    if (capacity > TextRep::maxSize) throw std::length_error("text too long");
    return blockCode(capacity + 1);
}

}  // namespace

void TextRep::enlarge(std::size_t capacity) {
    if (isInline() || blockBytes(tag() - heapTag) < smallestMovable) {
        TextRep larger = ofSize(size(), capacity);
        std::memcpy(larger.data(), data(), size());
        return swap(larger);
    }
    unsigned const code = codeFor(capacity);
    void* const moved = std::realloc(block(), blockBytes(code));
    if (!moved) throw std::bad_alloc();
    words_[0] = reinterpret_cast<std::uintptr_t>(moved);
    words_[1] = std::uint64_t(size()) << sizeShift | std::uint64_t(heapTag | code) << tagShift;
}

char* TextRep::makeRoom(std::size_t size, std::size_t capacity) {
    forget();
    unsigned const code = codeFor(capacity);
    auto* text = allocate(blockBytes(code));
    words_[0] = reinterpret_cast<std::uintptr_t>(text);
    words_[1] = std::uint64_t(heapTag | code) << tagShift;
    setSize(size);
    return text;
}

void TextRep::release() noexcept {
    std::size_t const bytes = capacity() + 1;
    if (bytes < smallestMovable) return ur::deallocateNode(block(), bytes);
    std::free(block());
}

}  // namespace urString::impl
