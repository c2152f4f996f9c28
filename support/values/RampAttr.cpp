// Computes a linear ramp.
#include "support/values/RampAttr.h"

#include <utility>

#include "foundation/urLinear/Range1d.h"

namespace nxSupport {

RampAttr::RampAttr(ur::Reference<Attribute<double>> input, double y0, double y1) noexcept
    : RampAttr(std::move(input), 0.0, y0, 1.0, y1) {}

RampAttr::RampAttr(ur::Reference<Attribute<double>> input, double x0, double y0, double x1, double y1) noexcept
    : Func1Attr(std::move(input)), inputLow_(x0), inputHigh_(x1), outputLow_(y0), outputHigh_(y1) {}

double RampAttr::evaluate() const {
    double const x = input().evaluate();
    if (x < inputLow_) return outputLow_;
    if (x > inputHigh_) return outputHigh_;
    double const t = (x - inputLow_) / (inputHigh_ - inputLow_);
    // Rounding can produce a value beyond an end.
    urLinear::Range1d outputs(outputLow_);
    outputs.include(outputHigh_);
    return outputs.clamp(outputLow_ * (1.0 - t) + outputHigh_ * t);
}

}  // namespace nxSupport
