// The conversions between channels and hue, saturation, lightness.
#include "foundation/urUtil/HSL.h"

#include <algorithm>
#include <cmath>

namespace urUtil {

namespace {

float clampUnit(float value) { return value > 0 ? std::min(value, 1.0F) : 0.0F; }

float wrapTurns(float turns) { return std::isfinite(turns) ? turns - std::floor(turns) : 0.0F; }

}  // namespace

HSL RGBtoHSL(Color const& color) {
    float const r = clampUnit(color.r);
    float const g = clampUnit(color.g);
    float const b = clampUnit(color.b);
    auto const [low, high] = std::minmax({r, g, b});
    float const lightness = (low + high) / 2;
    float const chroma = high - low;
    if (chroma == 0) return {0, 0, lightness};

    float const saturation = (high - lightness) / std::min(lightness, 1 - lightness);
    float sextant = 0;
    if (high == r) {
        sextant = (g - b) / chroma;
    } else if (high == g) {
        sextant = (b - r) / chroma + 2;
    } else {
        sextant = (r - g) / chroma + 4;
    }
    return {wrapTurns(sextant / 6), saturation, lightness};
}

void HSLtoRGB(HSL const& hsl, Color& out) {
    float const hue = wrapTurns(hsl.h) * 12;
    float const lightness = clampUnit(hsl.l);
    float const amplitude = clampUnit(hsl.s) * std::min(lightness, 1 - lightness);
    auto const channel = [&](float offset) {
        float const k = std::fmod(offset + hue, 12.0F);
        return lightness - amplitude * std::clamp(std::min(k - 3, 9 - k), -1.0F, 1.0F);
    };
    out.r = channel(0);
    out.g = channel(8);
    out.b = channel(4);
}

}  // namespace urUtil
