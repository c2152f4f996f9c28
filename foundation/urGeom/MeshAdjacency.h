// Neighbouring triangles and vertices of a mesh.
#pragma once

#include <cstdint>
#include <span>

#include "foundation/urGeom/CompactMesh.h"

namespace urGeom {

/// The number that means: no triangle.
constexpr std::uint32_t noTriangle = 0xFFFFFFFF;

/// The neighbours of every triangle across its three edges, computed once from a mesh.
class NX_API MeshAdjTris {
public:
    explicit MeshAdjTris(CompactMesh const& mesh);

    /// Number i is the triangle across the edge from vertex i to the next one; `noTriangle` at a border and where
    /// more than two triangles share the edge.
    [[nodiscard]] std::array<std::uint32_t, 3> const& neighbours(std::uint32_t triangle) const {
        return neighbours_[triangle];
    }
    [[nodiscard]] std::uint32_t triangleCount() const noexcept {
        return static_cast<std::uint32_t>(neighbours_.size());
    }
    [[nodiscard]] std::uint32_t numBytesUsed() const noexcept;

private:
    ur::vector<std::array<std::uint32_t, 3>> neighbours_;
};

/// The vertices that share an edge with each vertex, in ascending order, computed once from a mesh.
class NX_API MeshAdjVertices {
public:
    explicit MeshAdjVertices(CompactMesh const& mesh);

    [[nodiscard]] std::span<std::uint32_t const> neighbours(std::uint32_t vertex) const {
        return {neighbours_.data() + starts_[vertex], starts_[vertex + 1] - starts_[vertex]};
    }
    [[nodiscard]] std::uint32_t numBytesUsed() const noexcept;

private:
    ur::vector<std::uint32_t> starts_;  // the start of each vertex's run in `neighbours_`, then the end of the last run
    ur::vector<std::uint32_t> neighbours_;
};

}  // namespace urGeom
