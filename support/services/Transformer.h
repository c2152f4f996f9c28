// An interactive transform: a drag of a manipulator.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/TransformOperation.h"
#include "foundation/urRTB/Signal.h"

namespace nxSupport {

/// The state of one gesture at a time: what was started, and the value set last and the one set before.
///
/// Start a gesture with the object's matrix, set its value at each move, ask for the total since the start or for the
/// delta since the move before, finish it. The first delta counts from the neutral value. Angles are in radians;
/// matrices act on row vectors, `point * matrix`.
///
/// Scales and free transforms happen in the frame of the start matrix S: unless asked for raw, a transform T comes
/// as S⁻¹ T S, which is to be done after S. Their deltas multiply from the left: `total.preMult(delta)` is the new
/// total. Where an inverse does not exist (a start matrix or an earlier transform that flattens), the identity takes
/// its place, so that results stay finite. Held by reference. Main thread only; handlers may do anything.
class NX_API Transformer : public ur::ReferenceCount {
public:
    /// A gesture has begun; the value of the gesture has been set; the gesture is about to end.
    urRTB::Signal<Transformer*> transformStarted;
    urRTB::Signal<Transformer*> transformChanged;
    urRTB::Signal<Transformer*> transformFinished;

    Transformer() noexcept = default;
    ~Transformer() override = default;

    /// Begins a gesture, in place of one that is under way. `start`: the object's matrix.
    void startTranslate(urLinear::AffineMatrix const& start);
    void startRotate(urLinear::AffineMatrix const& start, urLinear::Line const& axis);
    /// `center`: the place that stays where it is, in the space that `start` leads to.
    void startScale(urLinear::AffineMatrix const& start, urLinear::Point const& center);
    void startXForm(urLinear::AffineMatrix const& start);

    void setTranslate(urLinear::Vector const& translation);
    void setRotate(double angle);
    /// Factors along the axes of the start matrix. Unequal ones make any gesture a non-uniform scale, until it ends.
    void setScale(urLinear::Vector const& factors);
    void setXForm(urLinear::AffineMatrix const& transform);

    /// Ends the gesture, after telling of it; also one that a handler of that has begun.
    void finish();

    [[nodiscard]] urLinear::TransformOperation getCurrentOp() const noexcept { return op_; }
    [[nodiscard]] urLinear::Vector getTranslate() const noexcept { return translation_; }
    [[nodiscard]] urLinear::Vector getTranslateDelta() const noexcept { return translation_ - previousTranslation_; }
    void getRotate(urLinear::Line& axis, double& angle) const noexcept;
    [[nodiscard]] urLinear::Line getRotateAxis() const noexcept { return axis_; }
    void getRotateDelta(urLinear::Line& axis, double& angle) const noexcept;
    /// Factors from the previous scale to the current one; 1 where no finite factor leads there, as from 0.
    [[nodiscard]] urLinear::Vector getScaleDelta() const noexcept;

    /// The total as a matrix; the identity without a gesture. `raw` counts for free transforms alone: as they were set.
    void getXForm(urLinear::AffineMatrix& result, bool raw) const;
    /// The delta likewise.
    void getXFormDelta(urLinear::AffineMatrix& result, bool raw) const;

private:
    void start(urLinear::TransformOperation op, urLinear::AffineMatrix const& matrix);
    template <class Value>
    void set(Value& previous, Value& current, Value const& neutral, Value const& value);
    void computeScale(urLinear::Vector const& factors, urLinear::AffineMatrix& result) const;
    [[nodiscard]] urLinear::AffineMatrix conjugated(urLinear::AffineMatrix const& transform) const;

    urLinear::TransformOperation op_ = urLinear::TransformOperation::none;
    bool firstSet_ = false;  ///< nothing has been set since the start
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

/// Tells what `matrix` does, in the bits of `urLinear::TransformOperation`: translate, rotate, and one kind of scale,
/// each when it differs from none by more than `urLinear::epsilonTol`. Shear is not told, a mirror is a scale.
NX_API void transformDescriptor(urLinear::AffineMatrix const& matrix, int& flags);

}  // namespace nxSupport
