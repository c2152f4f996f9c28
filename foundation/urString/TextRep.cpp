// Taking and giving back the heap block of a long text.
#include "foundation/urString/TextRep.h"

#include <stdexcept>

#include "foundation/ur/NodeHeap.h"

namespace urString::impl {

namespace {

constexpr std::size_t smallestBlock = 16;

/// The code of the smallest block of at least `bytes` bytes.
unsigned blockCode(std::size_t bytes) {
    std::size_t const last = (bytes < smallestBlock ? smallestBlock : bytes) - 1;
    // The three leading bits, rounded up, choose the step within the octave; eight of them are the next octave.
    unsigned const shift = last < smallestBlock ? 2 : static_cast<unsigned>(std::bit_width(last)) - 3;
    return (shift - 2) * 4 + static_cast<unsigned>(last >> shift) + 1 - 4;
}

}  // namespace

char* TextRep::makeRoom(std::size_t size, std::size_t capacity) {
    forget();
    if (capacity > maxSize) throw std::length_error("text too long");
    unsigned const code = blockCode(capacity + 1);
    auto* text = static_cast<char*>(ur::allocateNode(blockBytes(code)));
    words_[0] = reinterpret_cast<std::uintptr_t>(text);
    words_[1] = std::uint64_t(heapTag | code) << tagShift;
    setSize(size);
    return text;
}

void TextRep::release() noexcept { ur::deallocateNode(block(), capacity() + 1); }

}  // namespace urString::impl
