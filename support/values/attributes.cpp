// The shaping functions, and the anchors of the abstract attributes.
#include <cmath>
#include <numbers>
#include <utility>

#include "foundation/urLinear/Range1d.h"
#include "support/values/RampAttr.h"
#include "support/values/SineAttr.h"

namespace nxSupport {

AttributeBase::~AttributeBase() = default;
template class Attribute<double>;
template class Func1Attr<double, double>;

RampAttr::RampAttr(ur::Reference<Attribute<double>> input, double y0, double y1) noexcept
    : RampAttr(std::move(input), 0.0, y0, 1.0, y1) {}

RampAttr::RampAttr(ur::Reference<Attribute<double>> input, double x0, double y0, double x1, double y1) noexcept
    : Func1Attr(std::move(input)), inputLow_(x0), inputHigh_(x1), outputLow_(y0), outputHigh_(y1) {}

double RampAttr::evaluate() const {
    double const x = input().evaluate();
    if (x < inputLow_) return outputLow_;
    if (x > inputHigh_) return outputHigh_;
    double const t = (x - inputLow_) / (inputHigh_ - inputLow_);
    // Rounding can lead past an end.
    urLinear::Range1d outputs(outputLow_);
    outputs.include(outputHigh_);
    return outputs.clamp(outputLow_ * (1.0 - t) + outputHigh_ * t);
}

SineAttr::SineAttr(ur::Reference<Attribute<double>> input, double from, double to) noexcept
    : Func1Attr(std::move(input)), from_(from), to_(to) {}

double SineAttr::evaluate() const {
    double const x = input().evaluate();
    double const weight = (std::sin((x - 0.5) * std::numbers::pi) + 1.0) * 0.5;
    return (1.0 - weight) * from_ + weight * to_;
}

}  // namespace nxSupport
