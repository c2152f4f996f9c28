// Computes a sinusoidal ease.
#include "support/values/SineAttr.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace nxSupport {

SineAttr::SineAttr(ur::Reference<Attribute<double>> input, double from, double to) noexcept
    : Func1Attr(std::move(input)), from_(from), to_(to) {}

double SineAttr::evaluate() const {
    double const x = input().evaluate();
    double const weight = (std::sin((x - 0.5) * std::numbers::pi) + 1.0) * 0.5;
    return (1.0 - weight) * from_ + weight * to_;
}

}  // namespace nxSupport
