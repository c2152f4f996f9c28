// Building and measuring triangle meshes.
#include "foundation/urGeom/CompactMesh.h"

#include <algorithm>

#include "foundation/urGeom/impl/byteCount.h"

namespace urGeom {

std::uint32_t CompactMesh::addVertex(urLinear::Point const& position) {
    vertices_.emplace_back(position);
    return vertexCount() - 1;
}

bool CompactMesh::addTriangle(Triangle const& triangle) {
    auto const [a, b, c] = triangle;
    if (std::max({a, b, c}) >= vertexCount() || a == b || b == c || c == a) return false;
    triangles_.push_back(triangle);
    return true;
}

void CompactMesh::reserve(std::size_t vertices, std::size_t triangles) {
    vertices_.reserve(vertices);
    triangles_.reserve(triangles);
}

void CompactMesh::moveVertex(std::uint32_t number, urLinear::Point const& position) {
    vertices_[number] = urLinear::PointFlt(position);
}

urLinear::Point CompactMesh::at(MeshCoord const& coord) const {
    urLinear::Point place;
    for (unsigned i = 0; i < 3; ++i) {
        place += (vertex(triangles_[coord.triangle][i]) - urLinear::Point()) * coord.weights[i];
    }
    return place;
}

urLinear::Normal CompactMesh::normal(std::uint32_t triangle) const {
    auto const [a, b, c] = triangles_[triangle];
    return urLinear::Normal((vertex(b) - vertex(a)).cross(vertex(c) - vertex(a)));
}

BoundingBox CompactMesh::bounds() const {
    BoundingBox box;
    for (std::uint32_t i = 0; i < vertexCount(); ++i) box.include(vertex(i));
    return box;
}

std::uint32_t CompactMesh::numBytes() const {
    return impl::byteCount(sizeof *this + vertices_.capacity() * sizeof(vertices_[0]) +
                           triangles_.capacity() * sizeof(triangles_[0]));
}

}  // namespace urGeom
