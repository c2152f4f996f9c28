// Kinds of transforms.
#pragma once

namespace urLinear {

/// A kind of transform, or several as bits.
enum class TransformOperation : int {
    none = 0,
    translate = 1,
    rotate = 2,
    uniformScale = 4,
    nonUniformScale = 8,
    freeTransform = 16,
};

[[nodiscard]] constexpr TransformOperation operator|(TransformOperation a, TransformOperation b) noexcept {
    return static_cast<TransformOperation>(static_cast<int>(a) | static_cast<int>(b));
}
/// Compares with the bits that flags hold.
[[nodiscard]] constexpr bool operator==(TransformOperation operation, int bits) noexcept {
    return static_cast<int>(operation) == bits;
}

}  // namespace urLinear
