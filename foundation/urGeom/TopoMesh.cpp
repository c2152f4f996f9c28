// Builds and traverses meshes of connected elements.
#include "foundation/urGeom/TopoMesh.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace urGeom {
namespace {

/// Finds the edge between two vertices, in either order.
class EdgeTable {
public:
    impl::TopoEdge*& at(std::uint32_t a, std::uint32_t b) {
        auto const [low, high] = std::minmax(a, b);
        return edges_[std::uint64_t(low) << 32 | high];
    }

private:
    std::unordered_map<std::uint64_t, impl::TopoEdge*> edges_;
};

}  // namespace

TopoMeshEdge TopoMeshVertex::edge() const noexcept { return TopoMeshEdge(element_->edge); }

TopoMeshVertex TopoMeshEdge::vertex(int end) const noexcept { return TopoMeshVertex(element_->vertices[end]); }
TopoMeshFace TopoMeshEdge::face(int side) const noexcept { return TopoMeshFace(element_->faces[side]); }

TopoMeshVertex TopoMeshFace::vertex(int corner) const noexcept { return TopoMeshVertex(element_->vertices[corner]); }
TopoMeshEdge TopoMeshFace::edge(int corner) const noexcept { return TopoMeshEdge(element_->edges[corner]); }
TopoMeshFace TopoMeshFace::neighbour(int corner) const noexcept {
    TopoMeshEdge const seam = edge(corner);
    return seam.face(0) == *this ? seam.face(1) : seam.face(0);
}

TopoMeshVertex TopoMeshEntity::asVertex() const noexcept {
    return TopoMeshVertex(kind == vertex ? static_cast<impl::TopoVertex*>(element) : nullptr);
}
TopoMeshEdge TopoMeshEntity::asEdge() const noexcept {
    return TopoMeshEdge(kind == edge ? static_cast<impl::TopoEdge*>(element) : nullptr);
}
TopoMeshFace TopoMeshEntity::asFace() const noexcept {
    return TopoMeshFace(kind == face ? static_cast<impl::TopoFace*>(element) : nullptr);
}

ur::Reference<TopoMesh> TopoMesh::build(CompactMesh const& mesh) {
    ur::Reference<TopoMesh> result(new TopoMesh);
    for (std::uint32_t i = 0; i < mesh.vertexCount(); ++i) result->vertices_.push_back({mesh.vertex(i)});
    EdgeTable table;
    for (std::uint32_t i = 0; i < mesh.triangleCount(); ++i) {
        Triangle const& corners = mesh.triangle(i);
        impl::TopoFace& face = result->faces_.emplace_back();
        for (unsigned c = 0; c < 3; ++c) {
            std::uint32_t const next = corners[(c + 1) % 3];
            face.vertices[c] = &result->vertices_[corners[c]];
            impl::TopoEdge*& edge = table.at(corners[c], next);
            if (!edge) {
                edge = &result->edges_.emplace_back(
                    impl::TopoEdge{{face.vertices[c], &result->vertices_[next]}, {&face, nullptr}});
            } else if (!edge->faces[1]) {
                edge->faces[1] = &face;
            } else {
                return nullptr;
            }
            face.edges[c] = face.vertices[c]->edge = edge;
        }
    }
    return result;
}

}  // namespace urGeom
