// Gestures, their matrices, and the classification of matrices.
#include "support/services/Transformer.h"

#include <cmath>

#include "foundation/ur/keepAlive.h"
#include "foundation/urLinear/studioDecompose.h"

namespace nxSupport {

using urLinear::AffineMatrix;
using urLinear::Point;
using urLinear::Vector;
using Op = urLinear::TransformOperation;

namespace {

constexpr Vector unitScale(1, 1, 1);

}  // namespace

void Transformer::start(Op op, AffineMatrix const& matrix) {
    startMatrix_ = matrix;
    op_ = op;
    firstSet_ = true;
    transformStarted.emit(this);
}

void Transformer::startTranslate(AffineMatrix const& start) {
    previousTranslation_ = translation_ = Vector();
    this->start(Op::translate, start);
}

void Transformer::startRotate(AffineMatrix const& start, urLinear::Line const& axis) {
    axis_ = axis;
    previousAngle_ = angle_ = 0;
    this->start(Op::rotate, start);
}

void Transformer::startScale(AffineMatrix const& start, Point const& center) {
    center_ = center * start.inverse();
    previousScale_ = scale_ = unitScale;
    this->start(Op::uniformScale, start);
}

void Transformer::startXForm(AffineMatrix const& start) {
    previousTransform_ = transform_ = AffineMatrix();
    this->start(Op::freeTransform, start);
}

template <class Value>
void Transformer::set(Value& previous, Value& current, Value const& neutral, Value const& value) {
    previous = firstSet_ ? neutral : current;
    firstSet_ = false;
    current = value;
}

void Transformer::setTranslate(Vector const& translation) {
    set(previousTranslation_, translation_, Vector(), translation);
    transformChanged.emit(this);
}

void Transformer::setRotate(double angle) {
    set(previousAngle_, angle_, 0.0, angle);
    transformChanged.emit(this);
}

void Transformer::setScale(Vector const& factors) {
    set(previousScale_, scale_, unitScale, factors);
    bool const isUniform = scale_.x == scale_.y && scale_.y == scale_.z;
    if (!isUniform) op_ = Op::nonUniformScale;
    transformChanged.emit(this);
}

void Transformer::setXForm(AffineMatrix const& transform) {
    set(previousTransform_, transform_, AffineMatrix(1.0), transform);
    transformChanged.emit(this);
}

void Transformer::finish() {
    auto const self = ur::keepAlive(*this);  // a handler may drop the last reference
    transformFinished.emit(this);
    op_ = Op::none;
}

void Transformer::getRotate(urLinear::Line& axis, double& angle) const noexcept {
    axis = axis_;
    angle = angle_;
}

void Transformer::getRotateDelta(urLinear::Line& axis, double& angle) const noexcept {
    axis = axis_;
    angle = angle_ - previousAngle_;
}

Vector Transformer::getScaleDelta() const noexcept {
    return Vector::generate([&](int i) {
        double const factor = scale_[i] / previousScale_[i];
        return std::isfinite(factor) ? factor : 1;
    });
}

/// Scales about the centre, in the frame of the start matrix.
void Transformer::computeScale(Vector const& factors, AffineMatrix& result) const {
    Vector const c = center_ - Point();
    result.identity();
    result *= AffineMatrix().translate(-c);
    result *= AffineMatrix().scale(factors.x, factors.y, factors.z);
    result *= AffineMatrix().translate(c);
}

AffineMatrix Transformer::conjugated(AffineMatrix const& transform) const {
    AffineMatrix result = startMatrix_.inverse();
    result *= transform;
    result *= startMatrix_;
    return result;
}

void Transformer::getXForm(AffineMatrix& result, bool raw) const {
    result.identity();
    switch (op_) {
        case Op::translate: result.translate(translation_); break;
        case Op::rotate: result.rotate(axis_, angle_); break;
        case Op::uniformScale:
        case Op::nonUniformScale:
            computeScale(scale_, result);
            result = conjugated(result);
            break;
        case Op::freeTransform: result = raw ? transform_ : conjugated(transform_); break;
        case Op::none: break;
    }
}

void Transformer::getXFormDelta(AffineMatrix& result, bool raw) const {
    result.identity();
    switch (op_) {
        case Op::translate: result.translate(getTranslateDelta()); break;
        case Op::rotate: result.rotate(axis_, angle_ - previousAngle_); break;
        case Op::uniformScale:
        case Op::nonUniformScale:
            computeScale(getScaleDelta(), result);
            result = conjugated(result);
            break;
        case Op::freeTransform:
            result = previousTransform_.inverse();
            result.preMult(transform_);
            if (!raw) result = conjugated(result);
            break;
        case Op::none: break;
    }
}

void transformDescriptor(AffineMatrix const& matrix, int& flags) {
    Point translation;
    Vector scale;
    Vector rotation;
    Vector shear;
    urLinear::studioDecompose(matrix, translation, scale, rotation, shear);

    auto const isNear = [](double a, double b) { return std::abs(a - b) < urLinear::epsilonTol; };
    bool const isUniform = isNear(scale.x, scale.y) && isNear(scale.y, scale.z);
    bool const isUnit = isNear(scale.x, 1) && isNear(scale.y, 1) && isNear(scale.z, 1);
    Op found = Op::none;
    if (!equivalent(translation, Point())) found = found | Op::translate;
    if (!isUniform) found = found | Op::nonUniformScale;
    if (isUniform && !isUnit) found = found | Op::uniformScale;
    if (!equivalent(rotation, Vector())) found = found | Op::rotate;
    flags = static_cast<int>(found);
}

}  // namespace nxSupport
