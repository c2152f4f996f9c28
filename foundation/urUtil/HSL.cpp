// Converts between colour channels and hue, saturation, lightness.
#include "foundation/urUtil/HSL.h"

#include <algorithm>
#include <cmath>

namespace urUtil {

namespace {

double clampUnit(float value) { return value > 0 ? std::min(value, 1.0F) : 0.0F; }

double wrapTurns(double turns) { return std::isfinite(turns) ? turns - std::floor(turns) : 0; }

}  // namespace

// In double, where the sum of two channels is exact: a colour that is not quite a grey has a lightness between 0 and 1,
// and nothing below divides by zero.
HSL RGBtoHSL(Color const& color) {
    double const r = clampUnit(color.r);
    double const g = clampUnit(color.g);
    double const b = clampUnit(color.b);
    double const high = std::max({r, g, b});
    double const low = std::min({r, g, b});
    double const lightness = (low + high) / 2;
    double const chroma = high - low;
    if (chroma == 0) return {0, 0, static_cast<float>(lightness)};

    double const saturation = (high - lightness) / std::min(lightness, 1 - lightness);
    double sextant = 0;
    if (high == r) {
        sextant = (g - b) / chroma;
    } else if (high == g) {
        sextant = (b - r) / chroma + 2;
    } else {
        sextant = (r - g) / chroma + 4;
    }
    return {static_cast<float>(wrapTurns(sextant / 6)), static_cast<float>(saturation), static_cast<float>(lightness)};
}

void HSLtoRGB(HSL const& hsl, Color& out) {
    double const hue = wrapTurns(hsl.h) * 12;
    double const lightness = clampUnit(hsl.l);
    double const amplitude = clampUnit(hsl.s) * std::min(lightness, 1 - lightness);
    auto const channel = [&](double offset) {
        double const k = std::fmod(offset + hue, 12);
        return static_cast<float>(lightness - amplitude * std::clamp(std::min(k - 3, 9 - k), -1.0, 1.0));
    };
    out.r = channel(0);
    out.g = channel(8);
    out.b = channel(4);
}

}  // namespace urUtil
