// Hue, saturation and lightness, and their conversions.
#pragma once

#include "foundation/ur/Export.h"
#include "foundation/urUtil/Color.h"

namespace urUtil {

/// A colour by hue (in turns: 0 red, 1/3 green, 2/3 blue), saturation and lightness, each 0 to 1.
/// Stored in this order; black by default. A grey has hue 0 and saturation 0.
struct NX_API HSL {
    float h = 0;
    float s = 0;
    float l = 0;

    constexpr HSL() = default;
    constexpr HSL(float hue, float saturation, float lightness) : h(hue), s(saturation), l(lightness) {}

    /// Component 0 to 2 in storage order.
    constexpr float& operator[](int i) { return i == 0 ? h : i == 1 ? s : l; }
    constexpr float operator[](int i) const { return i == 0 ? h : i == 1 ? s : l; }
    bool operator==(HSL const&) const = default;
};

/// Clamps channels to 0 to 1; NaN counts as 0. Ignores the opacity. Formulas here and below: CSS Color Module Level 4,
/// section 7, with hue in turns.
[[nodiscard]] NX_API HSL RGBtoHSL(Color const& color);

/// Sets r, g and b of `out` and keeps its opacity. The hue wraps around at whole turns; saturation and lightness are
/// clamped to 0 to 1; values that are not finite count as 0.
NX_API void HSLtoRGB(HSL const& hsl, Color& out);

}  // namespace urUtil
