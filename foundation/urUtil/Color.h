// Colours in float and in 8-bit channels.
#pragma once

#include "foundation/ur/Export.h"

namespace urUtil {

struct Color8;

/// A colour with an opacity, nominally 0 to 1 per channel; stored values are not clamped. Opaque black by default. The
/// four channels in the order r, g, b, a are the whole storage.
struct NX_API Color {
    float r = 0;
    float g = 0;
    float b = 0;
    float a = 1;

    constexpr Color() = default;
    constexpr Color(float red, float green, float blue, float alpha = 1) : r(red), g(green), b(blue), a(alpha) {}
    /// Maps 0 to 255 to 0 to 1.
    explicit Color(Color8 const& color);

    /// Channel 0 to 3 in storage order.
    constexpr float& operator[](int i) { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }
    constexpr float operator[](int i) const { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }
    bool operator==(Color const&) const = default;
};

/// A colour with an opacity in four bytes, 0 to 255 each, in the order r, g, b, a. Opaque black by default.
struct NX_API Color8 {
    unsigned char r = 0;
    unsigned char g = 0;
    unsigned char b = 0;
    unsigned char a = 255;

    constexpr Color8() = default;
    constexpr Color8(unsigned char red, unsigned char green, unsigned char blue, unsigned char alpha = 255)
        : r(red), g(green), b(blue), a(alpha) {}
    /// Rounds each channel to the nearest of 256 steps and clamps it to 0 to 1; a NaN becomes 0.
    explicit Color8(Color const& color);

    /// Channel 0 to 3 in storage order.
    constexpr unsigned char& operator[](int i) { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }
    constexpr unsigned char operator[](int i) const { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }
    bool operator==(Color8 const&) const = default;
};

static_assert(sizeof(Color) == 16 && sizeof(Color8) == 4);

}  // namespace urUtil
