// Meshes with connected vertices, edges and faces.
#pragma once

#include <array>
#include <cstdint>
#include <deque>

#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/urGeom/CompactMesh.h"

namespace urGeom {

class TopoMesh;

namespace impl {

struct TopoEdge;
struct TopoFace;

struct TopoVertex {
    urLinear::Point position;
    TopoEdge* edge = nullptr;
};
struct TopoEdge {
    std::array<TopoVertex*, 2> vertices;
    std::array<TopoFace*, 2> faces;
};
struct TopoFace {
    std::array<TopoVertex*, 3> vertices;
    std::array<TopoEdge*, 3> edges;
};

/// The common part of the handles: a pointer to an element of a mesh, or null. Valid as long as the mesh lives.
template <class Element>
class TopoHandle {
public:
    TopoHandle() noexcept = default;
    explicit TopoHandle(Element* element) noexcept : element_(element) {}

    [[nodiscard]] bool null() const noexcept { return element_ == nullptr; }
    [[nodiscard]] Element* element() const noexcept { return element_; }
    bool operator==(TopoHandle const&) const = default;

protected:
    Element* element_ = nullptr;
};

}  // namespace impl

class TopoMeshEdge;
class TopoMeshFace;

/// A corner of the surface.
class NX_API TopoMeshVertex : public impl::TopoHandle<impl::TopoVertex> {
public:
    using TopoHandle::TopoHandle;

    [[nodiscard]] urLinear::Point const& position() const noexcept { return element_->position; }
    void move(urLinear::Point const& position) const noexcept { element_->position = position; }
    /// One of its edges; null when it has none.
    [[nodiscard]] TopoMeshEdge edge() const noexcept;
};

/// The side of one face, or the common side of two.
class NX_API TopoMeshEdge : public impl::TopoHandle<impl::TopoEdge> {
public:
    using TopoHandle::TopoHandle;

    /// End 0 or 1.
    [[nodiscard]] TopoMeshVertex vertex(int end) const noexcept;
    /// Side 0 or 1; null at side 1 of a border.
    [[nodiscard]] TopoMeshFace face(int side) const noexcept;
    [[nodiscard]] bool isBorder() const noexcept { return !element_->faces[1]; }
};

/// A triangle.
class NX_API TopoMeshFace : public impl::TopoHandle<impl::TopoFace> {
public:
    using TopoHandle::TopoHandle;

    /// Corner 0 to 2.
    [[nodiscard]] TopoMeshVertex vertex(int corner) const noexcept;
    /// The edge from a corner to the next one.
    [[nodiscard]] TopoMeshEdge edge(int corner) const noexcept;
    /// The face across that edge; null at a border.
    [[nodiscard]] TopoMeshFace neighbour(int corner) const noexcept;
};

/// A vertex, edge, face or nothing, as a selection or a pick names it. A plain value.
struct NX_API TopoMeshEntity {
    enum Kind : std::int32_t { none = 0, vertex = 1, edge = 2, face = 3 };

    Kind kind = none;
    void* element = nullptr;

    TopoMeshEntity() noexcept = default;
    TopoMeshEntity(TopoMeshVertex handle) noexcept : kind(vertex), element(handle.element()) {}
    TopoMeshEntity(TopoMeshEdge handle) noexcept : kind(edge), element(handle.element()) {}
    TopoMeshEntity(TopoMeshFace handle) noexcept : kind(face), element(handle.element()) {}

    /// The handle, or null when the entity is of another kind.
    [[nodiscard]] TopoMeshVertex asVertex() const noexcept;
    [[nodiscard]] TopoMeshEdge asEdge() const noexcept;
    [[nodiscard]] TopoMeshFace asFace() const noexcept;
    bool operator==(TopoMeshEntity const&) const = default;
};

/// Owns the elements, whose addresses never change. Shared by reference, changed on one thread.
class NX_API TopoMesh : public ur::ReferenceCount {
public:
    /// A mesh of the triangles of `mesh`, with the same numbers. Null when more than two of them share an edge.
    [[nodiscard]] static ur::Reference<TopoMesh> build(CompactMesh const& mesh);

    [[nodiscard]] std::size_t vertexCount() const noexcept { return vertices_.size(); }
    [[nodiscard]] std::size_t edgeCount() const noexcept { return edges_.size(); }
    [[nodiscard]] std::size_t faceCount() const noexcept { return faces_.size(); }
    /// Requires: a number below the count.
    [[nodiscard]] TopoMeshVertex vertex(std::size_t number) { return TopoMeshVertex(&vertices_[number]); }
    [[nodiscard]] TopoMeshEdge edge(std::size_t number) { return TopoMeshEdge(&edges_[number]); }
    [[nodiscard]] TopoMeshFace face(std::size_t number) { return TopoMeshFace(&faces_[number]); }

private:
    TopoMesh() = default;

    std::deque<impl::TopoVertex> vertices_;
    std::deque<impl::TopoEdge> edges_;
    std::deque<impl::TopoFace> faces_;
};

}  // namespace urGeom
