// The classes of a scene's objects, and what their values mean.
#pragma once

#include "examples/scene/Mesh.h"
#include "support/documents/documents.h"

namespace scene {

/// Fills the catalog: "Scene" at the top, "Group" and "Mesh" below.
void describe(nxSupport::ObjectCatalog& catalog);

/// Where an object is in its parent, and in the world.
[[nodiscard]] urLinear::AffineMatrix placeOf(nxSupport::Object const& object);
[[nodiscard]] urLinear::AffineMatrix worldOf(nxSupport::Object const& object);
/// Moves the object so that it is there in the world.
void setWorld(nxSupport::Object& object, urLinear::AffineMatrix const& place);

/// Appends to the strokes of a mesh. The former ones are shared, not copied.
void addStroke(nxSupport::Object& mesh, Dab const& dab);

/// The objects without those below another one of them.
[[nodiscard]] std::vector<nxSupport::Object*> topmost(std::span<nxSupport::Object* const> objects);

}  // namespace scene
