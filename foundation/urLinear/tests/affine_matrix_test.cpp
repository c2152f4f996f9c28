// Tests matrices and quaternions: conventions by example, arithmetic against Eigen.
#include <gtest/gtest.h>

#include <numbers>

#include "foundation/urLinear/tests/eigenValues.h"

namespace urLinear {
namespace {

constexpr double quarter = std::numbers::pi / 2;

TEST(AffineMatrix, KeepsTheConventions) {
    AffineMatrix matrix;
    for (int i = 0; i < 12; ++i) matrix.coefficient(i) = i + 1;
    EXPECT_EQ(matrix.axis(1), Vector(4, 5, 6)) << "groups of three";
    EXPECT_EQ(Point(1, 10, 100) * matrix, Point(751, 863, 975)) << "row vectors";
    EXPECT_EQ(Vector(1, 10, 100) * matrix, Vector(741, 852, 963)) << "which only points translate";
    AffineMatrix product = AffineMatrix().translate({1, 0, 0});
    product *= AffineMatrix().scale(2, 3, 4);
    EXPECT_EQ(Point() * product, Point(2, 0, 0)) << "a *= b is a, then b";
    product.preMult(AffineMatrix().translate({1, 0, 0}));
    EXPECT_EQ(Point() * product, Point(4, 0, 0)) << "a.preMult(b) is b, then a";
}

TEST(AffineMatrix, MutatorsComposeAfterTheExistingTransform) {
    Draw draw(1);
    for (int i = 0; i < 100; ++i) {
        AffineMatrix const start = draw.matrix();
        Vector const v = draw.vector();
        Line const line(draw.point(), draw.normal());
        Quaternion const q = draw.quaternion();
        double const angle = 3 * draw.number();
        auto const check = [&](AffineMatrix const& result, Eigen::Affine3d const& step) {
            EXPECT_TRUE(equivalent(result, fromEigen(step * toEigen(start))));
        };
        auto const turn = Eigen::AngleAxisd(angle, toEigen(line.direction.vector()));
        auto const shift = Eigen::Translation3d(toEigen(line.point - Point()));
        check(AffineMatrix(start).translate(v), Eigen::Affine3d(Eigen::Translation3d(toEigen(v))));
        check(AffineMatrix(start).scale(v), Eigen::Affine3d(toEigen(v).asDiagonal()));
        check(AffineMatrix(start).scale(v.x), Eigen::Affine3d(Eigen::Scaling(v.x)));
        check(AffineMatrix(start).rotate(line, angle), shift * turn * shift.inverse());
        check(AffineMatrix(start).rotate(q), Eigen::Affine3d(toEigen(q)));
        AffineMatrix const other = draw.matrix();
        check(start * other, toEigen(other));
        EXPECT_NEAR(start.determinant(), toEigen(start).linear().determinant(), 1e-12);
    }
}

TEST(AffineMatrix, InverseUndoesItHoweverUnequalTheAxes) {
    Draw draw(2);
    for (int exponent = 0; exponent > -200; --exponent) {
        AffineMatrix const scaling = AffineMatrix().scale(std::pow(10.0, exponent), 1, -2);
        Quaternion const q = draw.quaternion();
        AffineMatrix const back(q.conjugate());
        EXPECT_TRUE(equivalent(AffineMatrix(scaling).rotate(q).inverse() * scaling, back)) << exponent;
        EXPECT_TRUE(equivalent(scaling * (AffineMatrix(q) * scaling).inverse(), back)) << exponent;
        AffineMatrix const matrix = draw.matrix();
        EXPECT_TRUE(equivalent(matrix * matrix.inverse(), AffineMatrix()));
    }
}

TEST(AffineMatrix, SingularOnesReportNoInverse) {
    Draw draw(3);
    AffineMatrix const singular[] = {
        AffineMatrix(0),
        AffineMatrix().scale(1, 1, 0),
        AffineMatrix(draw.quaternion()).scale(1, 0, 1).rotate(draw.quaternion()).translate(draw.vector()),
        AffineMatrix().scale(std::nan(""), 1, 1),
        AffineMatrix(1 / std::numeric_limits<double>::max()).translate({1e10, 0, 0}),
    };
    for (AffineMatrix const& matrix : singular) {
        EXPECT_FALSE(matrix.invert()) << &matrix - singular;
        EXPECT_EQ(matrix.inverse(), AffineMatrix());
    }
}

TEST(AffineMatrix, NormalsStayPerpendicularToTheirSurface) {
    Draw draw(4);
    for (int i = 0; i < 200; ++i) {
        AffineMatrix const matrix = draw.matrix();
        Vector const tangent = draw.vector();
        Normal const normal(tangent.cross(draw.vector()));
        Normal const image = normal * matrix;
        EXPECT_NEAR(image.vector().dot((tangent * matrix).normalized()), 0, 1e-9);
        EXPECT_GT(image.vector().dot(normal.vector() * matrix), 0) << "and on the same side";
    }
    EXPECT_EQ(Normal(1, 0, 0) * AffineMatrix().scale(1, 0, 1), Normal(0, 0, 0));
}

TEST(AffineMatrix2, DoesTheSameInThePlane) {
    AffineMatrix2 const matrix = AffineMatrix2().scale({2, 3}).rotate(quarter).translate({1, 1});
    EXPECT_TRUE(equivalent(Point2(5, 7) * matrix, Point2(-20, 11)));
    EXPECT_TRUE(equivalent(matrix * matrix.inverse(), AffineMatrix2()));
    EXPECT_NEAR(matrix.determinant(), 6, 1e-12);
    EXPECT_FALSE(AffineMatrix2().scale({1, 0}).invert());
}

TEST(Quaternion, AgreesWithEigen) {
    Draw draw(6);
    for (int i = 0; i < 200; ++i) {
        Quaternion const a = draw.quaternion();
        Quaternion const b = draw.quaternion();
        Vector const v = draw.vector();
        double const t = (draw.number() + 2) / 4;
        EXPECT_TRUE((toEigen(b) * toEigen(a)).isApprox(toEigen(a * b)));
        EXPECT_TRUE((toEigen(a) * toEigen(v)).isApprox(toEigen(a.rotate(v))));
        EXPECT_TRUE(toEigen(a).slerp(t, toEigen(b)).isApprox(toEigen(slerp(a, b, t))));
        Quaternion const longer(a.x * 1e200, a.y * 1e200, a.z * 1e200, a.w * 1e200);
        EXPECT_TRUE(equivalent(longer.rotate(v), a.rotate(v))) << "a rotation whatever its length";
    }
}

TEST(Quaternion, DegenerateOnesAreNoRotation) {
    Vector const v(1, 2, 3);
    for (Quaternion const& q : {Quaternion(0, 0, 0, 0), Quaternion(std::nan(""), 0, 0, 1),
                                Quaternion(0, HUGE_VAL, 0, 0), Quaternion(Normal(0, 0, 0), 1)}) {
        EXPECT_EQ(q.rotate(v), v);
    }
    Quaternion const turn({0, 1, 0}, 1);
    EXPECT_TRUE(equivalent(slerp(turn, {-turn.x, -turn.y, -turn.z, -turn.w}, 0.5).rotate(v), turn.rotate(v)));
}

}  // namespace
}  // namespace urLinear
