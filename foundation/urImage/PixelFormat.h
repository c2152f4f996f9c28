// The storage formats of pixels.
#pragma once

#include <cstddef>

#include "foundation/ur/Export.h"
#include "foundation/urUtil/Color.h"

namespace urImage {

/// What one pixel holds: how many channels, and whether each is a byte or a float.
enum class PixelFormat : int {
    gray8 = 0,  ///< one byte
    rgb8 = 1,   ///< three bytes
    rgba8 = 2,  ///< four bytes
    grayF = 3,  ///< one float
    rgbaF = 4,  ///< four floats
};

[[nodiscard]] NX_API unsigned bytesPerPixel(PixelFormat format) noexcept;
[[nodiscard]] NX_API char const* nameOf(PixelFormat format) noexcept;

/// Stores `color` at `pixel`: gray as the luminance of Rec. 709, bytes rounded from 0 to 1 and clamped.
NX_API void encode(PixelFormat format, urUtil::Color const& color, std::byte* pixel) noexcept;
/// Gray in all three channels; opaque when no opacity is stored.
[[nodiscard]] NX_API urUtil::Color decode(PixelFormat format, std::byte const* pixel) noexcept;

}  // namespace urImage
