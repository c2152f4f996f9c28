// Subsets of the triangles of a mesh.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/ur/Export.h"
#include "foundation/ur/containers.h"
#include "foundation/urGeom/MeshAdjacency.h"

namespace urGeom {

/// A set of triangle numbers, one bit per triangle of the mesh. A value.
class NX_API MeshSubset {
public:
    /// An empty set for numbers below `triangleCount`; it never contains other numbers.
    explicit MeshSubset(std::uint32_t triangleCount = 0);

    void insert(std::uint32_t triangle);
    void remove(std::uint32_t triangle);
    [[nodiscard]] bool contains(std::uint32_t triangle) const noexcept;
    [[nodiscard]] std::uint32_t count() const noexcept;
    /// Adds every triangle adjacent to one in the set.
    void grow(MeshAdjTris const& adjacency);

    [[nodiscard]] std::uint32_t numBytesUsed() const noexcept;
    bool operator==(MeshSubset const&) const = default;

private:
    using Word = std::uint64_t;
    static constexpr std::uint32_t wordBits = 64;

    std::uint32_t triangleCount_;
    ur::vector<Word> words_;
};

}  // namespace urGeom
