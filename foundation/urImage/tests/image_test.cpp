// Tests images in every format.
#include "foundation/urImage/Image.h"
#include "foundation/ur/Reference.h"

namespace urImage {
namespace {

using urUtil::Color;

TEST(Image, HoldsAndConvertsPixelsInEveryFormat) {
    struct Case {
        PixelFormat format;
        unsigned bytes;
        Color read;
    };
    Color const orange(1, 0.6F, 0, 0.2F);
    float const gray = 0.2126F + 0.6F * 0.7152F;
    float const gray8 = 164 / 255.0F;
    for (auto const& [format, bytes, read] :
         {Case{PixelFormat::gray8, 1, {gray8, gray8, gray8}}, Case{PixelFormat::rgb8, 3, {1, 0.6F, 0}},
          Case{PixelFormat::rgba8, 4, orange}, Case{PixelFormat::grayF, 4, {gray, gray, gray}},
          Case{PixelFormat::rgbaF, 16, orange}}) {
        SCOPED_TRACE(nameOf(format));
        auto const image = ur::make<PixelImage>(3U, 2U, format);
        EXPECT_EQ(image->pixelBytes(), bytes);
        EXPECT_EQ(image->bytes().size(), 6 * bytes);
        image->setPixel(2, 1, orange);
        image->setPixel(3, 1, orange);
        for (auto const& picture : {image, image->converted(PixelFormat::rgbaF)}) {
            Color const found = picture->pixel(2, 1);
            for (int i = 0; i < 4; ++i) EXPECT_NEAR(found[i], read[i], 1e-6F) << i;
            EXPECT_EQ(picture->pixel(1, 1).r, 0);
        }
        EXPECT_EQ(image->pixel(3, 1), Color());
        image->fill(orange);
        EXPECT_EQ(image->pixel(0, 0), image->pixel(2, 1));
    }
}

}  // namespace
}  // namespace urImage
