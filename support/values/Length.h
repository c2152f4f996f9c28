// Lengths with units.
#pragma once

#include <cstdint>

#include "foundation/ur/Export.h"

namespace nxSupport::Units {

/// Units of length. Their values index the conversion table.
enum LengthUnits : std::int32_t {
    Millimeters = 0,
    Centimeters = 1,
    Meters = 2,
    Kilometers = 3,
    Inches = 4,
    Feet = 5,
    Yards = 6,
    Miles = 7,
    Points = 8,  ///< typographic: 72 to the inch
};

namespace impl {
/// Metres per unit, indexed by `LengthUnits`.
NX_API extern double const s_conversions[9];
}  // namespace impl

/// A length and its unit. A unit outside the enumeration converts to not-a-number.
class NX_API Length {
public:
    Length() noexcept = default;
    Length(double value, LengthUnits units) noexcept : value_(value), units_(units) {}
    /// `other` converted to `units`. If it already has that unit, the value is copied unchanged.
    Length(Length const& other, LengthUnits units) noexcept;

    [[nodiscard]] double value() const noexcept { return value_; }
    [[nodiscard]] LengthUnits units() const noexcept { return units_; }

private:
    double value_ = 0.0;
    LengthUnits units_ = Meters;
};

/// Whether two lengths differ by at most `tolerance`, compared in millimetres. False if one is not a number.
[[nodiscard]] NX_API bool equivalent(Length const& a, Length const& b, Length const& tolerance) noexcept;

/// Whether two lengths differ by less than `relativeTolerance` times the larger magnitude, compared in the unit of `a`.
/// Two exact zeros are equivalent in any units; a zero and a non-zero only with a tolerance above 1.
[[nodiscard]] NX_API bool equivalent(Length const& a, Length const& b, double relativeTolerance) noexcept;

}  // namespace nxSupport::Units
