// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace urImage {

class Image;
enum class PixelFormat : int;
class PixelImage;

}  // namespace urImage
