// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/urGeom/BoundingBox.h"
#include "foundation/urGeom/CompactMesh.h"
#include "foundation/urGeom/MeshAdjacency.h"
#include "foundation/urGeom/MeshCoord.h"
#include "foundation/urGeom/MeshSubset.h"
#include "foundation/urGeom/OrientedBox.h"
#include "foundation/urGeom/TopoMesh.h"
