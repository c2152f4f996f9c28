// All of this module. Made by scripts/module_headers.
#pragma once

#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/Line.h"
#include "foundation/urLinear/Normal.h"
#include "foundation/urLinear/Plane.h"
#include "foundation/urLinear/Point.h"
#include "foundation/urLinear/Quaternion.h"
#include "foundation/urLinear/Range1d.h"
#include "foundation/urLinear/Range3d.h"
#include "foundation/urLinear/Tolerance.h"
#include "foundation/urLinear/TransformOperation.h"
#include "foundation/urLinear/Tuple.h"
#include "foundation/urLinear/Vector.h"
#include "foundation/urLinear/studioDecompose.h"
