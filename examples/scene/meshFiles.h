// Reads OBJ, OFF and STL.
#pragma once

#include <filesystem>

#include "examples/scene/Mesh.h"

namespace scene {

/// Called with the part of the file that was read, from 0 to 1. False cancels.
using ReadProgress = std::function<bool(double)>;

/// Polygons become triangles; a triangle that names a vertex twice is left out. Null when cancelled. Throws a
/// `std::runtime_error` with the file, the line and the mistake. For a worker: touches nothing shared.
[[nodiscard]] Mesh readMesh(std::filesystem::path const& path, ReadProgress const& progress);

}  // namespace scene
