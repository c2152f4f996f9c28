// Makes the shims of objects and keeps them.
#include "examples/scene/Shapes.h"

#include <ranges>

namespace scene {

using urGeom::BoundingBox;
using urGeom::CompactMesh;
using Kind = Recipe::Kind;

Shape const& Shapes::of(nxSupport::Object const& mesh) {
    Entry& entry = entries_[mesh.id()];
    auto const file = mesh.get<urString::CString>("file");
    auto const strokes = mesh.value("strokes");
    bool const isRemoved = !entry.shape.meshes.empty() && !entry.shape.meshes.back()->manager();
    if (entry.shape.meshes.empty() || isRemoved || entry.file != file || entry.strokes != strokes) {
        Shape made = make(std::string(file), nxPLST::valueOf<std::vector<Dab>>(strokes));
        removeUnused(entry.shape, made);
        entry = {file, strokes, std::move(made)};
    }
    return entry.shape;
}

// [cascade]
/// The first mesh that is not needed any more takes everything that was made from it along. Another object that shares
/// it gets new shims. The mesh of the file stays.
void Shapes::removeUnused(Shape const& former, Shape const& now) {
    for (std::size_t i = 1; i < former.meshes.size(); ++i) {
        if (i < now.meshes.size() && now.meshes[i] == former.meshes[i]) continue;
        return cache_.removeResource(former.meshes[i]);
    }
}
// [cascade]

Shim Shapes::fileShim(std::string const& file) {
    return cache_.getShim(ur::make<FileKey>(jobs_, file), urKRCache::Shim::Retained);
}

template <class T>
Shim Shapes::derived(Recipe recipe) {
    return cache_.getShim(ur::make<DerivedKey<T>>(jobs_, std::move(recipe)), urKRCache::Shim::Retained);
}

// [shape]
Shape Shapes::make(std::string const& file, std::vector<Dab> const& strokes) {
    Shape shape;
    shape.meshes.push_back(fileShim(file));
    if (!strokes.empty()) {
        Shim const neighbours = derived<urGeom::MeshAdjVertices>({Kind::neighbours, shape.meshes.front()});
        for (Dab const& dab : strokes) {
            shape.meshes.push_back(derived<CompactMesh>({Kind::smoothed, shape.meshes.back(), neighbours, dab}));
        }
    }
    shape.normals = derived<Normals>({Kind::normals, shape.meshes.back()});
    shape.bounds = derived<BoundingBox>({Kind::bounds, shape.meshes.back()});
    shape.simplified = derived<CompactMesh>({Kind::simplified, shape.meshes.back()});
    shape.simplifiedNormals = derived<Normals>({Kind::normals, shape.simplified});
    shape.thumbnail = derived<Picture>({Kind::thumbnail, shape.simplified});
    return shape;
}
// [shape]

void Shapes::provide(std::string const& file, Mesh mesh) {
    Shim const shim = fileShim(file);
    static_cast<FileKey const&>(*shim->keyData()).provide(std::move(mesh));
    static_cast<void>(cache_.accessResource(shim));
}

void Shapes::reload(std::string const& file) {
    if (Shim const shim = cache_.findShim(ur::make<FileKey>(jobs_, file))) cache_.removeResource(shim);
}

urLinear::Range3d Shapes::boundsOf(nxSupport::Object const& object) {
    urLinear::Range3d range;
    if (object.objectClass().isA("Mesh")) {
        if (auto const box = access<BoundingBox>(of(object).bounds)) {
            range = box->range().transformed(worldOf(object));
        }
    }
    for (auto const& child : object.children()) range.include(boundsOf(child));
    return range;
}

Mesh latestMesh(Shape const& shape) {
    for (Shim const& shim : std::views::reverse(shape.meshes)) {
        if (Mesh mesh = access<CompactMesh>(shim)) return mesh;
    }
    return nullptr;
}

}  // namespace scene
