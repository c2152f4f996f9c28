// An interactive transform, such as dragging a manipulator.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/TransformOperation.h"
#include "foundation/urRTB/Signal.h"

namespace nxSupport {

/// The state of one gesture at a time: its start, its current value and its previous value.
///
/// Start a gesture with the object's matrix, set its value at each move, read the total since the start or the delta
/// since the previous move, and finish it. The first delta is relative to the neutral value. Angles are in radians;
/// matrices act on row vectors, `point * matrix`.
///
/// Scales and free transforms happen in the frame of the start matrix S: unless requested raw, a transform T is
/// returned as S⁻¹ T S, to be applied after S. Their deltas multiply from the left: `total.preMult(delta)` is the new
/// total. If an inverse does not exist (a start matrix or previous transform that flattens), the identity replaces it,
/// so that results stay finite. Held by reference. Main thread only; handlers may do anything.
class NX_API Transformer : public ur::ReferenceCount {
public:
    /// Emitted when a gesture has begun, when its value has been set, and when it is about to end.
    urRTB::Signal<Transformer*> transformStarted;
    urRTB::Signal<Transformer*> transformChanged;
    urRTB::Signal<Transformer*> transformFinished;

    Transformer() noexcept = default;
    ~Transformer() override = default;

    /// Begins a gesture and replaces one that is under way. `start`: the object's matrix.
    void startTranslate(urLinear::AffineMatrix const& start);
    void startRotate(urLinear::AffineMatrix const& start, urLinear::Line const& axis);
    /// `center`: the fixed point of the scale, in the space that `start` maps to.
    void startScale(urLinear::AffineMatrix const& start, urLinear::Point const& center);
    void startXForm(urLinear::AffineMatrix const& start);

    void setTranslate(urLinear::Vector const& translation);
    void setRotate(double angle);
    /// Factors along the axes of the start matrix. Unequal ones make the gesture a non-uniform scale until it ends.
    void setScale(urLinear::Vector const& factors);
    void setXForm(urLinear::AffineMatrix const& transform);

    /// Emits `transformFinished` and ends the gesture, including one that a handler of the signal has begun.
    void finish();

    [[nodiscard]] urLinear::TransformOperation getCurrentOp() const noexcept { return op_; }
    [[nodiscard]] urLinear::Vector getTranslate() const noexcept { return translation_; }
    [[nodiscard]] urLinear::Vector getTranslateDelta() const noexcept { return translation_ - previousTranslation_; }
    void getRotate(urLinear::Line& axis, double& angle) const noexcept;
    [[nodiscard]] urLinear::Line getRotateAxis() const noexcept { return axis_; }
    void getRotateDelta(urLinear::Line& axis, double& angle) const noexcept;
    /// Factors from the previous scale to the current one. A factor that is not finite, as from 0, is returned as 1.
    [[nodiscard]] urLinear::Vector getScaleDelta() const noexcept;

    /// The total as a matrix; the identity without a gesture. `raw` returns free transforms as they were set.
    void getXForm(urLinear::AffineMatrix& result, bool raw) const;
    /// The same for the delta.
    void getXFormDelta(urLinear::AffineMatrix& result, bool raw) const;

private:
    void start(urLinear::TransformOperation op, urLinear::AffineMatrix const& matrix);
    template <class Value>
    void set(Value& previous, Value& current, Value const& neutral, Value const& value);
    void computeScale(urLinear::Vector const& factors, urLinear::AffineMatrix& result) const;
    [[nodiscard]] urLinear::AffineMatrix conjugated(urLinear::AffineMatrix const& transform) const;

    urLinear::TransformOperation op_ = urLinear::TransformOperation::none;
    bool firstSet_ = false;  ///< true until a value is set after the start
    urLinear::Line axis_;
    urLinear::Point center_;  ///< in the frame of the start matrix
    urLinear::Vector previousTranslation_;
    urLinear::Vector translation_;
    double previousAngle_ = 0;
    double angle_ = 0;
    urLinear::Vector previousScale_{1, 1, 1};
    urLinear::Vector scale_{1, 1, 1};
    urLinear::AffineMatrix startMatrix_;
    urLinear::AffineMatrix previousTransform_;
    urLinear::AffineMatrix transform_;
};

/// Reports the effects of `matrix` in `flags`, as bits of `urLinear::TransformOperation`: translate, rotate, and one
/// kind of scale, each if it differs from none by more than `urLinear::epsilonTol`. Ignores shear; a mirror is a scale.
NX_API void transformDescriptor(urLinear::AffineMatrix const& matrix, int& flags);

}  // namespace nxSupport
