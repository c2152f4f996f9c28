// The derived data of a scene's meshes.
#pragma once

#include <unordered_map>

#include "examples/scene/catalog.h"
#include "examples/scene/resources.h"

namespace scene {

/// The shims of one mesh. Each is built from those before it, so dropping a stroke drops what was built from it.
struct Shape {
    std::vector<Shim> meshes;  ///< that of the file, then one for each stroke
    Shim normals;
    Shim bounds;
    Shim simplified;
    Shim simplifiedNormals;
    Shim thumbnail;
};

/// Finds the shape of an object, in the state in which the object is.
class Shapes {
public:
    Shapes(urKRCache::Manager& cache, nxSupport::JobQueue& jobs) : cache_(cache), jobs_(jobs) {}

    /// Valid until the next call for an object that has changed.
    Shape const& of(nxSupport::Object const& mesh);
    /// Takes a mesh that was read already, before an object with that file is made.
    void provide(std::string const& file, Mesh mesh);
    /// The file has changed: removes its mesh and everything that was made from it.
    void reload(std::string const& file);
    /// The bounds of an object and all below it, in the world. Empty while they are not there yet.
    [[nodiscard]] urLinear::Range3d boundsOf(nxSupport::Object const& object);
    void clear() { entries_.clear(); }

private:
    struct Entry {
        urString::CString file;
        nxSupport::Object::ItemReference strokes;
        Shape shape;
    };
    [[nodiscard]] Shim fileShim(std::string const& file);
    template <class T>
    [[nodiscard]] Shim derived(Recipe recipe);
    void removeUnused(Shape const& former, Shape const& now);
    [[nodiscard]] Shape make(std::string const& file, std::vector<Dab> const& strokes);

    urKRCache::Manager& cache_;
    nxSupport::JobQueue& jobs_;
    std::unordered_map<urOS::Uuid, Entry, urOS::UuidHash> entries_;
};

/// The mesh after the last stroke for which it is there; null for none.
[[nodiscard]] Mesh latestMesh(Shape const& shape);

}  // namespace scene
