// Positions on the surface of a mesh.
#pragma once

#include <array>
#include <cstdint>

#include "foundation/ur/Export.h"

namespace urGeom {

/// A position in a triangle of a mesh: the weights of the triangle's three vertices, which sum to 1 inside it, and the
/// number of the triangle. The first vertex of triangle 0 by default. A plain value.
struct NX_API MeshCoord {
    std::array<double, 3> weights = {1, 0, 0};
    std::uint32_t triangle = 0;

    bool operator==(MeshCoord const&) const = default;
};

}  // namespace urGeom
