// Reading, writing and converting pixels.
#include "foundation/urImage/Image.h"

namespace urImage {

void Image::fill(urUtil::Color const& color) {
    for (std::uint32_t y = 0; y < height_; ++y) {
        for (std::uint32_t x = 0; x < width_; ++x) setPixel(x, y, color);
    }
}

PixelImage::PixelImage(std::uint32_t width, std::uint32_t height, PixelFormat format)
    : Image(width, height), format_(format), bytes_(pixelCount() * bytesPerPixel(format)) {}

ur::Reference<PixelImage> PixelImage::converted(PixelFormat format) const {
    auto result = ur::make<PixelImage>(width(), height(), format);
    for (std::uint32_t y = 0; y < height(); ++y) {
        for (std::uint32_t x = 0; x < width(); ++x) result->setPixel(x, y, pixel(x, y));
    }
    return result;
}

std::size_t PixelImage::offset(std::uint32_t x, std::uint32_t y) const noexcept {
    return (std::size_t(y) * width() + x) * bytesPerPixel(format_);
}

urUtil::Color PixelImage::pixel(std::uint32_t x, std::uint32_t y) const {
    return contains(x, y) ? decode(format_, bytes_.data() + offset(x, y)) : urUtil::Color();
}

void PixelImage::setPixel(std::uint32_t x, std::uint32_t y, urUtil::Color const& color) {
    if (contains(x, y)) encode(format_, color, bytes_.data() + offset(x, y));
}

}  // namespace urImage
