// Triangle meshes as two plain arrays.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"
#include "foundation/urGeom/BoundingBox.h"
#include "foundation/urGeom/MeshCoord.h"
#include "foundation/urLinear/Normal.h"

namespace urGeom {

/// The numbers of a triangle's vertices, anticlockwise seen from outside.
using Triangle = std::array<std::uint32_t, 3>;

/// Vertices in single precision and triangles between them; shared by reference.
///
/// Every vertex number in a triangle is valid. One thread changes the mesh, several may read it.
class NX_API CompactMesh : public ur::ReferenceCount {
public:
    /// Returns the number of the new vertex.
    std::uint32_t addVertex(urLinear::Point const& position);
    /// False, and nothing added, when a vertex does not exist or is named twice.
    bool addTriangle(Triangle const& triangle);
    void reserve(std::size_t vertices, std::size_t triangles);

    [[nodiscard]] std::uint32_t vertexCount() const noexcept { return static_cast<std::uint32_t>(vertices_.size()); }
    [[nodiscard]] std::uint32_t triangleCount() const noexcept { return static_cast<std::uint32_t>(triangles_.size()); }
    /// Requires: a number below the count.
    [[nodiscard]] urLinear::Point vertex(std::uint32_t number) const { return urLinear::Point(vertices_[number]); }
    [[nodiscard]] Triangle const& triangle(std::uint32_t number) const { return triangles_[number]; }
    void moveVertex(std::uint32_t number, urLinear::Point const& position);
    /// All of them, valid until the mesh changes.
    [[nodiscard]] std::span<urLinear::PointFlt const> vertices() const noexcept { return vertices_; }
    [[nodiscard]] std::span<Triangle const> triangles() const noexcept { return triangles_; }

    /// The position that a coordinate names. Requires: its triangle exists.
    [[nodiscard]] urLinear::Point at(MeshCoord const& coord) const;
    /// Zero for a triangle without area.
    [[nodiscard]] urLinear::Normal normal(std::uint32_t triangle) const;
    [[nodiscard]] BoundingBox bounds() const;

    /// The bytes of the mesh, its arrays included. Derived classes add what they own.
    [[nodiscard]] virtual std::uint32_t numBytes() const;

private:
    ur::vector<urLinear::PointFlt> vertices_;
    ur::vector<Triangle> triangles_;
};

}  // namespace urGeom
