// Tests the steps found in plain transforms, and that any matrix can be rebuilt.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "foundation/urLinear/studioDecompose.h"
#include "foundation/urLinear/tests/eigenValues.h"

namespace urLinear {
namespace {

struct Parts {
    Point translation;
    Vector scale, rotation, shear;
};

Parts decompose(AffineMatrix const& matrix) {
    Parts parts;
    studioDecompose(matrix, parts.translation, parts.scale, parts.rotation, parts.shear);
    return parts;
}

/// Decomposes and checks that the parts are finite and rebuild the matrix, up to rounding of its size.
Parts decomposeAndRebuild(AffineMatrix const& matrix) {
    Parts const parts = decompose(matrix);
    AffineMatrix const rebuilt = studioCompose(parts.translation, parts.scale, parts.rotation, parts.shear);
    double size = 0;
    for (int i = 0; i < 12; ++i) size = std::max(size, std::abs(matrix.coefficient(i)));
    EXPECT_TRUE(equivalent(rebuilt, matrix, 1e-14 * size)) << (toEigen(matrix).matrix() - toEigen(rebuilt).matrix());
    return parts;
}

void expectParts(AffineMatrix const& matrix, Vector const& scale, Vector const& rotation) {
    Parts const parts = decomposeAndRebuild(matrix);
    EXPECT_TRUE(equivalent(parts.scale, scale)) << toEigen(parts.scale);
    EXPECT_TRUE(equivalent(parts.rotation, rotation)) << toEigen(parts.rotation);
    EXPECT_TRUE(equivalent(parts.shear, Vector()));
}

TEST(StudioDecompose, FindsTheStepsOfPlainTransforms) {
    for (Vector const& scale :
         {Vector(1, 1, 1), Vector(2, 2, 2), Vector(1, 2, 1), Vector(0, 1, 1), Vector(1, 0, 1), Vector(0, 0, 3),
          Vector(0, 0, 0), Vector(1, 1, -1), Vector(-1, 2, 3), Vector(-1, -1, -1), Vector(1e-200, 1, 1e200)}) {
        expectParts(AffineMatrix().scale(scale), scale, Vector());
    }
    expectParts(AffineMatrix().scale(-1, -1, 1), {1, 1, 1}, {0, 0, std::numbers::pi});
    expectParts(AffineMatrix().rotate(Line({}, {0, 1, 0}), 0.5), {1, 1, 1}, {0, 0.5, 0});
    Vector const angles(0.3, -0.7, 2);
    for (Vector const& scale : {Vector(1, 1, 1), Vector(2, 3, 4), Vector(2, 0, 1)}) {
        expectParts(studioCompose({5, 6, 7}, scale, angles, {}), scale, angles);
    }
    EXPECT_EQ(Point(0, 1, 0) * studioCompose({}, {1, 2, 1}, {}, {5, 0, 0}), Point(5, 2, 0)) << "y moves along x";
}

TEST(StudioDecompose, AnyMatrixCanBeRebuilt) {
    Draw draw(9);
    for (int i = 0; i < 3000; ++i) {
        AffineMatrix matrix = draw.matrix();
        if (i % 3 == 1) matrix.setAxis(i / 3 % 3, {});                                                // collapsed
        if (i % 3 == 2) matrix.setAxis(1, matrix.axis(0) + matrix.axis(1) * std::pow(10, -i / 100));  // sheared
        if (i % 5 == 0) matrix.setAxis(i / 5 % 3, matrix.axis(1) * 1e-323);  // all but collapsed
        if (i % 7 == 0) matrix.setAxis(2, matrix.axis(0) * 3);               // in one plane
        double const nearlyQuarter = std::numbers::pi / 2 + std::pow(10, -i / 100);
        if (i % 11 == 0) matrix = studioCompose({}, {1, 2, 3}, {1, nearlyQuarter, 2}, {});  // x and z nearly one axis
        Parts const parts = decomposeAndRebuild(matrix);
        if (parts.scale.x >= 0 && parts.scale.y >= 0 && parts.scale.z >= 0) continue;
        EXPECT_LT(matrix.determinant(), 1e-12) << "only mirrors have negative scales";
    }
}

TEST(StudioDecompose, NonFiniteCoefficientsCountAsZero) {
    AffineMatrix matrix = AffineMatrix().translate({HUGE_VAL, 2, 3});
    matrix.coefficient(0) = std::nan("");
    Parts const parts = decompose(matrix);
    EXPECT_EQ(parts.translation, Point(0, 2, 3));
    EXPECT_EQ(parts.scale, Vector(0, 1, 1));
    EXPECT_EQ(parts.rotation, Vector());
}

}  // namespace
}  // namespace urLinear
