// Images in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "foundation/ur/Reference.h"
#include "foundation/ur/ReferenceCount.h"
#include "foundation/ur/containers.h"
#include "foundation/urImage/PixelFormat.h"

namespace urImage {

/// A rectangle of pixels; shared by reference. Coordinates count from the upper left corner.
///
/// The dimensions are fixed at construction. Derived classes define the pixels. One thread changes an image, several
/// may read it.
class NX_API Image : public ur::ReferenceCount {
public:
    [[nodiscard]] std::uint32_t width() const noexcept { return width_; }
    [[nodiscard]] std::uint32_t height() const noexcept { return height_; }
    [[nodiscard]] std::uint64_t pixelCount() const noexcept { return std::uint64_t(width_) * height_; }
    [[nodiscard]] bool contains(std::uint32_t x, std::uint32_t y) const noexcept { return x < width_ && y < height_; }

    [[nodiscard]] virtual unsigned pixelBytes() const noexcept = 0;
    /// Opaque black outside the image.
    [[nodiscard]] virtual urUtil::Color pixel(std::uint32_t x, std::uint32_t y) const = 0;
    /// Does nothing outside the image.
    virtual void setPixel(std::uint32_t x, std::uint32_t y, urUtil::Color const& color) = 0;
    void fill(urUtil::Color const& color);

protected:
    Image(std::uint32_t width, std::uint32_t height) noexcept : width_(width), height_(height) {}

private:
    std::uint32_t const width_;
    std::uint32_t const height_;
};

/// An image that holds its pixels in one of the formats, row by row without gaps. All bytes are zero at first.
class NX_API PixelImage final : public Image {
public:
    PixelImage(std::uint32_t width, std::uint32_t height, PixelFormat format);

    [[nodiscard]] PixelFormat format() const noexcept { return format_; }
    /// The same picture in another format.
    [[nodiscard]] ur::Reference<PixelImage> converted(PixelFormat format) const;
    [[nodiscard]] std::span<std::byte> bytes() noexcept { return bytes_; }
    [[nodiscard]] std::span<std::byte const> bytes() const noexcept { return bytes_; }

    [[nodiscard]] unsigned pixelBytes() const noexcept override { return bytesPerPixel(format_); }
    [[nodiscard]] urUtil::Color pixel(std::uint32_t x, std::uint32_t y) const override;
    void setPixel(std::uint32_t x, std::uint32_t y, urUtil::Color const& color) override;

private:
    [[nodiscard]] std::size_t offset(std::uint32_t x, std::uint32_t y) const noexcept;

    PixelFormat format_;
    ur::vector<std::byte> bytes_;
};

}  // namespace urImage
