// Normals, simplification and smoothing.
#include "examples/scene/Mesh.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>

namespace scene {

using urGeom::CompactMesh;
using urLinear::Point;
using urLinear::PointFlt;
using urLinear::Vector;

Normals normalsOf(CompactMesh const& mesh) {
    Normals normals;
    normals.reserve(mesh.triangleCount());
    auto const vertices = mesh.vertices();
    for (auto const& [a, b, c] : mesh.triangles()) {
        auto const normal = (vertices[b] - vertices[a]).cross(vertices[c] - vertices[a]);
        normals.push_back(normal.normalized());
    }
    return normals;
}

Mesh simplified(CompactMesh const& mesh, unsigned cells) {
    struct Cell {
        std::uint32_t vertex;
        Vector sum;
        double count = 0;
    };
    auto const box = mesh.bounds().range();
    Vector const size = box.size();
    double const width = std::max(size.largestComponent() / cells, 1e-30);
    auto const result = std::make_shared<CompactMesh>();
    std::unordered_map<std::uint64_t, Cell> grid;
    std::vector<std::uint32_t> cellOf;
    cellOf.reserve(mesh.vertexCount());
    for (PointFlt const& vertex : mesh.vertices()) {
        Vector const place = Point(vertex) - box.min;
        std::uint64_t key = 0;
        for (int i = 0; i < 3; ++i) key = key << 20U | static_cast<std::uint64_t>(place[i] / width);
        auto const [found, isNew] = grid.try_emplace(key);
        Cell& cell = found->second;
        if (isNew) cell.vertex = result->addVertex(Point(vertex));
        cell.sum += place;
        cell.count += 1;
        cellOf.push_back(cell.vertex);
    }
    for (auto const& [key, cell] : grid) result->moveVertex(cell.vertex, box.min + cell.sum / cell.count);
    for (auto const& [a, b, c] : mesh.triangles()) result->addTriangle({cellOf[a], cellOf[b], cellOf[c]});
    return result;
}

Mesh smoothed(CompactMesh const& mesh, urGeom::MeshAdjVertices const& neighbours, Dab const& dab) {
    auto const result = std::make_shared<CompactMesh>(mesh);
    auto const vertices = mesh.vertices();
    for (std::uint32_t i = 0; i < mesh.vertexCount(); ++i) {
        Point const vertex(vertices[i]);
        double const distance = vertex.distance(dab.centre);
        auto const around = neighbours.neighbours(i);
        if (distance >= dab.radius || around.empty()) continue;
        Vector sum;
        for (std::uint32_t const next : around) sum += Point(vertices[next]) - vertex;
        double const falloff = 1 - distance / dab.radius;
        result->moveVertex(i, vertex + sum * (dab.strength * falloff / static_cast<double>(around.size())));
    }
    return result;
}

}  // namespace scene
