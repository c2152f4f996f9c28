// Random values, and their Eigen counterparts.
#pragma once

#include <Eigen/Geometry>

#include <random>

#include "foundation/urLinear/AffineMatrix.h"

namespace urLinear {

/// Eigen transforms columns where we transform rows: its matrix is the transpose of ours.
inline Eigen::Affine3d toEigen(AffineMatrix const& matrix) {
    Eigen::Affine3d result = Eigen::Affine3d::Identity();
    for (int i = 0; i < 12; ++i) result(i % 3, i / 3) = matrix.coefficient(i);
    return result;
}
inline AffineMatrix fromEigen(Eigen::Affine3d const& transform) {
    AffineMatrix result;
    for (int i = 0; i < 12; ++i) result.coefficient(i) = transform(i % 3, i / 3);
    return result;
}
inline Eigen::Vector3d toEigen(Vector const& v) { return {v.x, v.y, v.z}; }
inline Eigen::Quaterniond toEigen(Quaternion const& q) { return {q.w, q.x, q.y, q.z}; }

class Draw {
public:
    explicit Draw(unsigned seed) : random_(seed) {}
    double number() { return std::uniform_real_distribution<double>(-2, 2)(random_); }
    Vector vector() { return {number(), number(), number()}; }
    Point point() { return Point() + vector(); }
    Normal normal() { return Normal(vector()); }
    Quaternion quaternion() { return Quaternion(number(), number(), number(), number()).normalized(); }
    AffineMatrix matrix() {
        AffineMatrix result;
        for (int i = 0; i < 12; ++i) result.coefficient(i) = number();
        return result;
    }

private:
    std::mt19937 random_;
};

}  // namespace urLinear
