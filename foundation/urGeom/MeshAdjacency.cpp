// Computes adjacency from sorted lists of edges.
#include "foundation/urGeom/MeshAdjacency.h"

#include <algorithm>
#include <array>
#include <utility>

#include "foundation/urGeom/impl/byteCount.h"

namespace urGeom {
namespace {

/// One side of a triangle; both triangles at an edge list the same vertices.
struct Side {
    std::pair<std::uint32_t, std::uint32_t> vertices;
    std::uint32_t triangle;
    std::uint32_t number;
};

ur::vector<Side> sortedSides(CompactMesh const& mesh) {
    ur::vector<Side> sides;
    sides.reserve(std::size_t(3) * mesh.triangleCount());
    for (std::uint32_t triangle = 0; triangle < mesh.triangleCount(); ++triangle) {
        Triangle const& corners = mesh.triangle(triangle);
        for (std::uint32_t i = 0; i < 3; ++i) {
            sides.push_back({std::minmax(corners[i], corners[(i + 1) % 3]), triangle, i});
        }
    }
    std::sort(sides.begin(), sides.end(), [](Side const& a, Side const& b) { return a.vertices < b.vertices; });
    return sides;
}

}  // namespace

MeshAdjTris::MeshAdjTris(CompactMesh const& mesh)
    : neighbours_(mesh.triangleCount(), {noTriangle, noTriangle, noTriangle}) {
    ur::vector<Side> const sides = sortedSides(mesh);
    for (auto side = sides.begin(); side != sides.end();) {
        auto const end = std::find_if(side, sides.end(), [&](Side const& s) { return s.vertices != side->vertices; });
        if (end - side == 2) {
            neighbours_[side[0].triangle][side[0].number] = side[1].triangle;
            neighbours_[side[1].triangle][side[1].number] = side[0].triangle;
        }
        side = end;
    }
}

std::uint32_t MeshAdjTris::numBytesUsed() const noexcept {
    return impl::byteCount(sizeof *this + neighbours_.capacity() * sizeof(neighbours_[0]));
}

MeshAdjVertices::MeshAdjVertices(CompactMesh const& mesh) : starts_(mesh.vertexCount() + 1, 0) {
    using Pair = std::pair<std::uint32_t, std::uint32_t>;
    ur::vector<Pair> pairs;
    for (Side const& side : sortedSides(mesh)) {
        auto const [a, b] = side.vertices;
        pairs.insert(pairs.end(), {Pair(a, b), Pair(b, a)});
    }
    std::sort(pairs.begin(), pairs.end());
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    neighbours_.reserve(pairs.size());
    for (auto const& [from, to] : pairs) {
        ++starts_[from + 1];
        neighbours_.push_back(to);
    }
    for (std::size_t i = 1; i < starts_.size(); ++i) starts_[i] += starts_[i - 1];
}

std::uint32_t MeshAdjVertices::numBytesUsed() const noexcept {
    return impl::byteCount(sizeof *this + (starts_.capacity() + neighbours_.capacity()) * sizeof(std::uint32_t));
}

}  // namespace urGeom
