// Sets of triangles as bits.
#include "foundation/urGeom/MeshSubset.h"

#include <algorithm>
#include <bit>

#include "foundation/urGeom/impl/byteCount.h"

namespace urGeom {

MeshSubset::MeshSubset(std::uint32_t triangleCount)
    : triangleCount_(triangleCount), words_((std::size_t(triangleCount) + wordBits - 1) / wordBits) {}

void MeshSubset::insert(std::uint32_t triangle) {
    if (triangle < triangleCount_) words_[triangle / wordBits] |= Word(1) << triangle % wordBits;
}

void MeshSubset::remove(std::uint32_t triangle) {
    if (triangle < triangleCount_) words_[triangle / wordBits] &= ~(Word(1) << triangle % wordBits);
}

bool MeshSubset::contains(std::uint32_t triangle) const noexcept {
    return triangle < triangleCount_ && (words_[triangle / wordBits] >> triangle % wordBits & 1U) != 0;
}

std::uint32_t MeshSubset::count() const noexcept {
    std::uint32_t total = 0;
    for (Word const word : words_) total += static_cast<std::uint32_t>(std::popcount(word));
    return total;
}

void MeshSubset::grow(MeshAdjTris const& adjacency) {
    MeshSubset const before = *this;
    std::uint32_t const count = std::min(triangleCount_, adjacency.triangleCount());
    for (std::uint32_t triangle = 0; triangle < count; ++triangle) {
        if (!before.contains(triangle)) continue;
        for (std::uint32_t const neighbour : adjacency.neighbours(triangle)) insert(neighbour);
    }
}

std::uint32_t MeshSubset::numBytesUsed() const noexcept {
    return impl::byteCount(sizeof *this + words_.capacity() * sizeof(Word));
}

}  // namespace urGeom
