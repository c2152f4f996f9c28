// The kinds of transform.
#pragma once

namespace urLinear {

/// A kind of transform, or as bits several of them.
enum class TransformOperation : int {
    none = 0,
    translate = 1,
    rotate = 2,
    uniformScale = 4,
    nonUniformScale = 8,
    freeTransform = 16,
};

}  // namespace urLinear
