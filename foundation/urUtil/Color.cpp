// Converts colours between float and 8-bit channels.
#include "foundation/urUtil/Color.h"

#include <algorithm>
#include <cmath>

namespace urUtil {

namespace {

float fromByte(unsigned char channel) { return static_cast<float>(channel) / 255.0F; }

unsigned char toByte(float channel) {
    float const clamped = channel > 0 ? std::min(channel, 1.0F) : 0.0F;
    return static_cast<unsigned char>(std::lround(clamped * 255.0F));
}

}  // namespace

Color::Color(Color8 const& color) : Color(fromByte(color.r), fromByte(color.g), fromByte(color.b), fromByte(color.a)) {}

Color8::Color8(Color const& color) : Color8(toByte(color.r), toByte(color.g), toByte(color.b), toByte(color.a)) {}

}  // namespace urUtil
