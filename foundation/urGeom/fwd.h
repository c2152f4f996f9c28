// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace urGeom {

class BoundingBox;
class CompactMesh;
class MeshAdjTris;
class MeshAdjVertices;
struct MeshCoord;
class MeshSubset;
struct OrientedBox;
class TopoMesh;
class TopoMeshEdge;
struct TopoMeshEntity;
class TopoMeshFace;
class TopoMeshVertex;

}  // namespace urGeom
