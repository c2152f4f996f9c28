// Decomposes a transform into scale, shear, rotation and translation.
#pragma once

#include "foundation/urLinear/AffineMatrix.h"

namespace urLinear {

/// Decomposes `matrix` into steps that reproduce it when applied in this order:
///
/// 1. scale along the axes by `scale`, and shear: y moves along x by `shear.x`, z along x by `shear.y` and
///    along y by `shear.z`, each for one unit of the unscaled axis;
/// 2. rotate about x by `rotation.x` radians, then about y by `rotation.y`, then about z by `rotation.z`;
/// 3. translate by `translation` from the origin.
///
/// Works for every matrix whose axes have a finite length. A scale is 0 where the image of an axis is zero or lies in
/// the line or plane of those before it. Scales are negative only for a reflection; then the signs are those that leave
/// the smallest rotation. Coefficients that are not finite count as 0.
NX_API void studioDecompose(AffineMatrix const& matrix, Point& translation, Vector& scale, Vector& rotation,
                            Vector& shear);

/// The transform of these steps; the inverse of `studioDecompose`.
[[nodiscard]] NX_API AffineMatrix studioCompose(Point const& translation, Vector const& scale, Vector const& rotation,
                                                Vector const& shear);

}  // namespace urLinear
