// Converts between pixels and colours.
#include "foundation/urImage/PixelFormat.h"

#include <array>
#include <cstring>

namespace urImage {
namespace {

struct Traits {
    char const* name;
    unsigned channels;
    unsigned channelBytes;
};

Traits const& traitsOf(PixelFormat format) noexcept {
    static constexpr std::array<Traits, 5> table = {
        {{"gray8", 1, 1}, {"rgb8", 3, 1}, {"rgba8", 4, 1}, {"grayF", 1, 4}, {"rgbaF", 4, 4}}};
    return table[static_cast<std::size_t>(format)];
}

// Rec. 709.
float luminance(urUtil::Color const& color) noexcept {
    return 0.2126F * color.r + 0.7152F * color.g + 0.0722F * color.b;
}

}  // namespace

unsigned bytesPerPixel(PixelFormat format) noexcept {
    return traitsOf(format).channels * traitsOf(format).channelBytes;
}

char const* nameOf(PixelFormat format) noexcept { return traitsOf(format).name; }

void encode(PixelFormat format, urUtil::Color const& color, std::byte* pixel) noexcept {
    float const gray = luminance(color);
    urUtil::Color const stored = traitsOf(format).channels == 1 ? urUtil::Color(gray, gray, gray) : color;
    if (traitsOf(format).channelBytes == 1) {
        urUtil::Color8 const bytes(stored);
        std::memcpy(pixel, &bytes, bytesPerPixel(format));
    } else {
        std::memcpy(pixel, &stored, bytesPerPixel(format));
    }
}

urUtil::Color decode(PixelFormat format, std::byte const* pixel) noexcept {
    urUtil::Color8 bytes;
    urUtil::Color color;
    bool const small = traitsOf(format).channelBytes == 1;
    std::memcpy(small ? static_cast<void*>(&bytes) : &color, pixel, bytesPerPixel(format));
    if (small) color = urUtil::Color(bytes);
    return traitsOf(format).channels == 1 ? urUtil::Color(color.r, color.r, color.r) : color;
}

}  // namespace urImage
