// Affine matrices: the inverse, and normals.
#include "foundation/urLinear/AffineMatrix.h"

#include <Eigen/Dense>

#include <algorithm>
#include <limits>

namespace urLinear {

namespace {

template <int N>
using Linear = Eigen::Matrix<double, N, N, Eigen::RowMajor>;

/// The inverse of the linear part, if there is one.
///
/// Axes of very different lengths are allowed, axes in one plane are not. Therefore every row is first scaled to length
/// 1, and the determinant is compared with its largest value for columns of these lengths (Hadamard), which is at most
/// 1, the largest value for such rows.
template <int N>
std::optional<Linear<N>> inverseOf(Linear<N> rows) {
    Eigen::Vector<double, N> const lengths = rows.rowwise().stableNorm();
    rows.array().colwise() /= lengths.array();
    constexpr double rounding = 4 * std::numeric_limits<double>::epsilon();
    double const most = rows.colwise().norm().prod();
    Linear<N> inverse = Linear<N>::Zero();
    double determinant = 0;
    bool invertible = false;
    rows.computeInverseAndDetWithCheck(inverse, determinant, invertible, rounding * most);
    if (!invertible) return std::nullopt;
    inverse.array().rowwise() /= lengths.transpose().array();
    return inverse;
}

}  // namespace

template <int N>
std::optional<BasicAffineMatrix<N>> BasicAffineMatrix<N>::invert() const {
    std::optional<Linear<N>> const linear = inverseOf<N>(Eigen::Map<Linear<N> const>(data()));
    if (!linear) return std::nullopt;
    BasicAffineMatrix result;
    Eigen::Map<Linear<N>>(result.data()) = *linear;
    result.setTranslation(PointType() - (translation() - PointType()) * result);
    bool const finite = std::all_of(result.data(), result.data() + size, [](double c) { return std::isfinite(c); });
    return finite ? std::optional(result) : std::nullopt;
}

template std::optional<AffineMatrix2> BasicAffineMatrix<2>::invert() const;
template std::optional<AffineMatrix> BasicAffineMatrix<3>::invert() const;

Normal operator*(Normal const& normal, AffineMatrix const& matrix) {
    Vector const x = matrix.axis(0);
    Vector const y = matrix.axis(1);
    Vector const z = matrix.axis(2);
    // The cofactors are the inverse transpose times the determinant; only the determinant's sign matters.
    Vector const image = normal.x() * y.cross(z) + normal.y() * z.cross(x) + normal.z() * x.cross(y);
    return Normal(matrix.determinant() < 0 ? -image : image);
}

}  // namespace urLinear
