// The geometry that workers and views share.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/urGeom/CompactMesh.h"
#include "foundation/urGeom/MeshAdjacency.h"

namespace scene {

/// Never changes once made, so that threads share it without a lock; null for none.
using Mesh = std::shared_ptr<urGeom::CompactMesh const>;
using Normals = std::vector<urLinear::VectorFlt>;

/// The normal of each triangle, of length 1.
[[nodiscard]] Normals normalsOf(urGeom::CompactMesh const& mesh);

/// About as many triangles as a grid of that many cells along the longest side has on a surface: the vertices in a
/// cell become one.
[[nodiscard]] Mesh simplified(urGeom::CompactMesh const& mesh, unsigned cells);

/// One touch of the smoothing brush, in the space of the mesh.
struct Dab {
    urLinear::Point centre;
    double radius = 0;
    double strength = 0.5;  ///< from 0 to 1
};
template <class Visit>
void listMembers(Dab& dab, Visit&& visit) {
    visit("centre", dab.centre);
    visit("radius", dab.radius);
    visit("strength", dab.strength);
}

/// A copy in which the vertices below the brush have moved towards the middle of their neighbours.
[[nodiscard]] Mesh smoothed(urGeom::CompactMesh const& mesh, urGeom::MeshAdjVertices const& neighbours, Dab const& dab);

}  // namespace scene
