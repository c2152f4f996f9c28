// Declares what the other headers of this module define. Made by scripts/module_headers.
#pragma once

namespace urLinear {

struct Line;
enum class NormalPromise;
struct ParamLine;
struct ParamPlane;
struct Plane;
struct Quaternion;
struct Range1d;
struct Range3d;
enum class TransformOperation : int;
struct Tuple2;

}  // namespace urLinear
