// Converts and compares lengths.
#include "support/values/Length.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace nxSupport::Units {

double const impl::s_conversions[9] = {0.001, 0.01, 1.0, 1000.0, 0.0254, 0.3048, 0.9144, 1609.344, 0.0254 / 72};

namespace {

double metresPer(LengthUnits units) noexcept {
    bool const known = units >= Millimeters && units <= Points;
    return known ? impl::s_conversions[units] : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

Length::Length(Length const& other, LengthUnits units) noexcept : value_(other.value_), units_(units) {
    if (other.units_ == units) return;
    value_ = other.value_ * metresPer(other.units_) / metresPer(units);
}

bool equivalent(Length const& a, Length const& b, Length const& tolerance) noexcept {
    double const difference = Length(a, Millimeters).value() - Length(b, Millimeters).value();
    return Length(tolerance, Millimeters).value() >= std::abs(difference);
}

bool equivalent(Length const& a, Length const& b, double relativeTolerance) noexcept {
    if (a.value() == 0.0 && b.value() == 0.0) return true;
    double const inA = Length(b, a.units()).value();
    double const larger = std::max(std::abs(a.value()), std::abs(inA));
    return relativeTolerance > std::abs(a.value() - inA) / larger;
}

}  // namespace nxSupport::Units
