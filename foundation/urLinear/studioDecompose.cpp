// The decomposition: lower triangle times rotation, and Euler angles.
#include "foundation/urLinear/studioDecompose.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace urLinear {

namespace {

using Axes = std::array<Vector, 3>;

constexpr Axes unitAxes = {Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)};

Vector finitePart(Vector const& vector) {
    return Vector::generate([&](int i) { return std::isfinite(vector[i]) ? vector[i] : 0; });
}

/// The part of a unit vector at right angles to the known axes; zero if it is only rounding error. Two passes, because
/// the rest of a nearly parallel vector is not yet at right angles after the first.
Vector reject(Vector rest, Axes const& known) {
    for (int pass = 0; pass < 2; ++pass) {
        for (Vector const& axis : known) rest -= axis * rest.dot(axis);
    }
    constexpr double rounding = 16 * std::numeric_limits<double>::epsilon();
    return rest.length() <= rounding ? Vector() : rest;
}

/// Gives each axis that is still zero a direction at right angles to the others, its own direction if possible.
void complete(Axes& axes) {
    for (int k = 0; k < 3; ++k) {
        if (axes[k] != Vector()) continue;
        for (int candidate = 0; candidate < 3 && axes[k] == Vector(); ++candidate) {
            axes[k] = reject(unitAxes[(k + candidate) % 3], axes).normalized();
        }
    }
}

/// The images of the axes, each without its part along the axes before it.
struct RightAngled {
    Axes axes;     ///< unit vectors at right angles to each other
    Vector scale;  ///< the length of each image along its own axis
};

/// Reverses axes, and the signs of their scale, until they are right-handed. Avoids negative scales if possible;
/// otherwise reverses those that leave the smallest rotation.
void makeRightHanded(RightAngled& parts) {
    RightAngled best;
    double bestRank = -std::numeric_limits<double>::infinity();
    for (unsigned turns = 0; turns < 8; ++turns) {
        RightAngled turned = parts;
        bool negative = false;
        for (int k = 0; k < 3; ++k) {
            if ((turns >> k & 1U) == 0) continue;
            turned.axes[k] *= -1;
            turned.scale[k] *= -1;
            negative = negative || turned.scale[k] < 0;
        }
        auto const& [x, y, z] = turned.axes;
        if (x.cross(y).dot(z) < 0) continue;
        double const rank = (negative ? 0 : 10) + x.x + y.y + z.z;
        if (rank > bestRank) best = turned;
        bestRank = std::max(rank, bestRank);
    }
    parts = best;
}

RightAngled orthonormalize(Axes const& images) {
    RightAngled parts;
    for (int k = 0; k < 3; ++k) {
        Vector const rest = reject(images[k].normalized(), parts.axes);
        parts.scale[k] = rest.length() * images[k].length();
        parts.axes[k] = rest.normalized();
    }
    complete(parts.axes);
    makeRightHanded(parts);
    return parts;
}

/// The angles of the rotations about x, y and z, in this order, that turn the unit axes into `axes`. The last angle is
/// measured after undoing the first, which keeps all three accurate where y is near a quarter turn (Herter and Lott,
/// Algorithms for decomposing 3-D orthogonal matrices, 1993).
Vector eulerAngles(Axes const& axes) {
    auto const& [x, y, z] = axes;
    double const aboutX = std::atan2(y.z, z.z);
    double const aboutY = std::atan2(-x.z, std::hypot(x.x, x.y));
    double const s = std::sin(aboutX);
    double const c = std::cos(aboutX);
    return {aboutX, aboutY, std::atan2(s * z.x - c * y.x, c * y.y - s * z.y)};
}

}  // namespace

void studioDecompose(AffineMatrix const& matrix, Point& translation, Vector& scale, Vector& rotation, Vector& shear) {
    Axes const images = {finitePart(matrix.axis(0)), finitePart(matrix.axis(1)), finitePart(matrix.axis(2))};
    RightAngled const parts = orthonormalize(images);
    translation = Point() + finitePart(matrix.translation() - Point());
    scale = parts.scale;
    rotation = eulerAngles(parts.axes);
    shear = {images[1].dot(parts.axes[0]), images[2].dot(parts.axes[0]), images[2].dot(parts.axes[1])};
}

AffineMatrix studioCompose(Point const& translation, Vector const& scale, Vector const& rotation, Vector const& shear) {
    AffineMatrix result;
    result.setAxis(0, {scale.x, 0, 0}).setAxis(1, {shear.x, scale.y, 0}).setAxis(2, {shear.y, shear.z, scale.z});
    for (int k = 0; k < 3; ++k) result.rotate(Quaternion(Normal(unitAxes[k]), rotation[k]));
    return result.translate(translation - Point());
}

}  // namespace urLinear
