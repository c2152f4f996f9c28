// Recipes, files, and the bytes of meshes.
#include "examples/scene/resources.h"

#include "examples/scene/Rasterizer.h"
#include "examples/scene/meshFiles.h"
#include "foundation/urOS/IOStream.h"

namespace scene {

using urGeom::BoundingBox;
using urGeom::CompactMesh;
using urGeom::MeshAdjVertices;

namespace {

constexpr std::size_t mostAtOnce = 20000;  // triangles

void writeAll(urOS::IOStream& stream, std::span<std::byte const> bytes) {
    static_cast<void>(stream.write(bytes.data(), bytes.size()));  // the cache counts what was written
}

bool readAll(urOS::IOStream& stream, std::span<std::byte> bytes) {
    std::size_t done = 0;
    for (std::size_t got = 1; done < bytes.size() && got > 0; done += got) {
        if (stream.read(bytes.data() + done, bytes.size() - done, &got).isError()) return false;
    }
    return done == bytes.size();
}

}  // namespace

std::size_t bytesOf(CompactMesh const& mesh) { return mesh.numBytes(); }
std::size_t bytesOf(Normals const& normals) { return sizeof(std::uint64_t) + normals.size() * sizeof normals[0]; }
std::size_t bytesOf(MeshAdjVertices const& neighbours) { return neighbours.numBytesUsed(); }
std::size_t bytesOf(Picture const& picture) { return sizeof picture + picture.pixels.size() * sizeof(std::uint32_t); }

void writeData(urOS::IOStream& stream, CompactMesh const& mesh) {
    std::uint32_t const counts[] = {mesh.vertexCount(), mesh.triangleCount()};
    writeAll(stream, std::as_bytes(std::span(counts)));
    writeAll(stream, std::as_bytes(mesh.vertices()));
    writeAll(stream, std::as_bytes(mesh.triangles()));
}

void readData(urOS::IOStream& stream, std::shared_ptr<CompactMesh const>& mesh) {
    std::uint32_t counts[2] = {};
    if (!readAll(stream, std::as_writable_bytes(std::span(counts)))) return;
    std::vector<urLinear::PointFlt> vertices(counts[0]);
    std::vector<urGeom::Triangle> triangles(counts[1]);
    if (!readAll(stream, std::as_writable_bytes(std::span(vertices))) ||
        !readAll(stream, std::as_writable_bytes(std::span(triangles))))
        return;
    auto const read = std::make_shared<CompactMesh>();
    read->reserve(vertices.size(), triangles.size());
    for (auto const& vertex : vertices) read->addVertex(urLinear::Point(vertex));
    for (auto const& triangle : triangles) read->addTriangle(triangle);
    mesh = read;
}

template <class T>
int DerivedKey<T>::onCompare(urKRCache::KeyData const* other) const {
    auto const identity = [](Recipe const& r) {
        auto const& c = r.dab.centre;
        return std::tuple(r.kind, r.source.get(), r.second.get(), c.x, c.y, c.z, r.dab.radius, r.dab.strength);
    };
    auto const mine = identity(recipe_);
    auto const theirs = identity(static_cast<DerivedKey const*>(other)->recipe_);
    return mine < theirs ? -1 : mine == theirs ? 0 : 1;
}

// [recipes]
template <class T>
auto DerivedKey<T>::prepare() const -> typename JobKey<T>::Work {
    Mesh const mesh = access<CompactMesh>(recipe_.source);
    if (!mesh) return {};
    std::string const name = mesh->triangleCount() > mostAtOnce ? "Preparing" : "";
    if constexpr (std::is_same_v<T, MeshAdjVertices>) {
        return {name, [mesh](auto*) { return std::make_shared<MeshAdjVertices const>(*mesh); }};
    } else if constexpr (std::is_same_v<T, Normals>) {
        return {name, [mesh](auto*) { return std::make_shared<Normals const>(normalsOf(*mesh)); }};
    } else if constexpr (std::is_same_v<T, BoundingBox>) {
        return {name, [mesh](auto*) { return std::make_shared<BoundingBox const>(mesh->bounds()); }};
    } else if constexpr (std::is_same_v<T, Picture>) {
        return {name, [mesh](auto*) { return std::make_shared<Picture const>(thumbnailOf(*mesh)); }};
    } else if (recipe_.kind == Recipe::Kind::simplified) {
        return {name, [mesh](auto*) { return simplified(*mesh, 48); }};
    } else {
        auto const neighbours = access<MeshAdjVertices>(recipe_.second);
        if (!neighbours) return {};
        return {name, [mesh, neighbours, dab = recipe_.dab](auto*) { return smoothed(*mesh, *neighbours, dab); }};
    }
}
// [recipes]

template class DerivedKey<CompactMesh>;
template class DerivedKey<MeshAdjVertices>;
template class DerivedKey<Normals>;
template class DerivedKey<BoundingBox>;
template class DerivedKey<Picture>;

auto FileKey::prepare() const -> Work {
    if (path_.empty()) return {};
    return {path_, [path = path_](nxSupport::Job* job) {
                return readMesh(path, [job](double part) { return job->setProgress(part), !job->isCancelled(); });
            }};
}

}  // namespace scene
