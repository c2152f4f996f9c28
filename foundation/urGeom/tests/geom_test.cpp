// Tests boxes, and a tetrahedron as a compact mesh, as adjacency and as connected elements.
#include <cmath>
#include <set>

#include "foundation/ur/Reference.h"
#include "foundation/urGeom/MeshSubset.h"
#include "foundation/urGeom/OrientedBox.h"
#include "foundation/urGeom/TopoMesh.h"

namespace urGeom {
namespace {

using urLinear::Point;

/// Edges of length 1 along the axes from the origin, and the face between their ends.
ur::Reference<CompactMesh> tetrahedron() {
    auto mesh = ur::make<CompactMesh>();
    for (Point const& p : {Point(), Point(1, 0, 0), Point(0, 1, 0), Point(0, 0, 1)}) mesh->addVertex(p);
    for (Triangle const& t : {Triangle{0, 2, 1}, {0, 1, 3}, {0, 3, 2}, {1, 2, 3}}) EXPECT_TRUE(mesh->addTriangle(t));
    return mesh;
}

TEST(BoundingBox, RoundsOutwardsAndKnowsWhenItIsEmpty) {
    BoundingBox box;
    EXPECT_TRUE(box.empty() && box.range().empty() && !box.intersects(box) && !box.contains(Point()));
    Point const tenths(0.1, -0.1, 0.7);
    box.include(tenths);
    box.include(Point(NAN, 5, 5));
    EXPECT_TRUE(box.contains(tenths));
    EXPECT_LE(double(box.min().x), 0.1);
    EXPECT_GE(double(box.max().x), 0.1);
    EXPECT_LT(box.max().z - box.min().z, 1e-6F);
    BoundingBox const unit(urLinear::Range3d({0, 0, 0}, {1, 1, 1}));
    EXPECT_FALSE(box.intersects(unit));
    box.include(unit);
    EXPECT_TRUE(box.contains({1, 1, 1}) && box.contains({0, 0, 0}));
}

TEST(OrientedBox, ContainsWhatLiesBetweenItsSides) {
    double const h = std::sqrt(0.5);
    OrientedBox const box{
        {1, 0, 0}, {urLinear::Normal(h, h, 0), urLinear::Normal(-h, h, 0), urLinear::Normal()}, {2, 1, 1}};
    EXPECT_TRUE(box.contains({1 + 1.3, 1.3, 0}));
    EXPECT_FALSE(box.contains({1 + 1.3, -1.3, 0}));
    EXPECT_TRUE(equivalent(box.corner(7), Point(1 + 2 * h - h, 2 * h + h, 1)));
    for (int i = 0; i < 8; ++i) EXPECT_TRUE(box.bounds().contains(box.corner(i)));
}

TEST(CompactMesh, KeepsItsTrianglesWithinItsVertices) {
    auto const mesh = tetrahedron();
    EXPECT_FALSE(mesh->addTriangle({0, 1, 4}) || mesh->addTriangle({0, 1, 1}));
    EXPECT_EQ(mesh->triangleCount(), 4U);
    EXPECT_TRUE(equivalent(mesh->normal(0).vector(), urLinear::Vector(0, 0, -1)));
    EXPECT_TRUE(equivalent(mesh->at({{0.25, 0.25, 0.5}, 3}), Point(0.25, 0.25, 0.5)));
    EXPECT_EQ(mesh->bounds(), BoundingBox(urLinear::Range3d({0, 0, 0}, {1, 1, 1})));
    EXPECT_GE(mesh->numBytes(), sizeof(CompactMesh) + 4 * 12 + 4 * 12);
}

TEST(MeshAdjacency, FindsNeighboursAcrossEdgesAndNoneAtBorders) {
    auto const mesh = tetrahedron();
    MeshAdjTris const closed(*mesh);
    for (std::uint32_t t = 0; t < 4; ++t) {
        auto const& found = closed.neighbours(t);
        EXPECT_EQ(std::set<std::uint32_t>(found.begin(), found.end()).size(), 3U);
    }
    EXPECT_EQ(closed.neighbours(3)[0], 0U);  // from vertex 1 to 2
    MeshAdjVertices const vertices(*mesh);
    EXPECT_THAT(vertices.neighbours(2), testing::ElementsAre(0U, 1U, 3U));

    mesh->addVertex({1, 1, 1});
    mesh->addTriangle({1, 2, 4});
    MeshAdjTris const fin(*mesh);
    EXPECT_THAT(fin.neighbours(4), testing::Each(noTriangle));
    EXPECT_GE(fin.numBytesUsed(), 5 * 12U);
    EXPECT_GE(vertices.numBytesUsed(), 17 * 4U);
    EXPECT_FALSE(TopoMesh::build(*mesh));
}

TEST(MeshSubset, GrowsAlongTheSurface) {
    MeshSubset subset(4);
    subset.insert(0);
    subset.insert(4);
    EXPECT_EQ(subset.count(), 1U);
    EXPECT_FALSE(subset.contains(4));
    subset.grow(MeshAdjTris(*tetrahedron()));
    EXPECT_EQ(subset.count(), 4U);
    MeshSubset larger(100);
    larger.insert(99);
    larger.grow(MeshAdjTris(*tetrahedron()));
    EXPECT_EQ(larger.count(), 1U);
    subset.remove(2);
    EXPECT_FALSE(subset.contains(2));
    EXPECT_GE(subset.numBytesUsed(), sizeof(MeshSubset) + 8);
}

TEST(TopoMesh, ConnectsVerticesEdgesAndFaces) {
    auto const mesh = TopoMesh::build(*tetrahedron());
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->vertexCount() + mesh->faceCount(), mesh->edgeCount() + 2);  // Euler
    for (std::size_t i = 0; i < mesh->faceCount(); ++i) {
        TopoMeshFace const face = mesh->face(i);
        for (int c = 0; c < 3; ++c) {
            TopoMeshEdge const edge = face.edge(c);
            EXPECT_TRUE(edge.vertex(0) == face.vertex(c) || edge.vertex(1) == face.vertex(c));
            EXPECT_FALSE(edge.isBorder() || face.neighbour(c).null() || face.neighbour(c) == face);
        }
    }
    TopoMeshVertex const vertex = mesh->vertex(2);
    vertex.move({5, 5, 5});
    EXPECT_EQ(mesh->vertex(2).position(), Point(5, 5, 5));
    TopoMeshEntity const entity(vertex);
    EXPECT_TRUE(entity.asVertex() == vertex && entity.asEdge().null() && entity.asFace().null());
    EXPECT_FALSE(vertex.edge().null());
}

}  // namespace
}  // namespace urGeom
