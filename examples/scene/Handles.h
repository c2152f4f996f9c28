// The handles by which objects are moved, turned and scaled.
#pragma once

#include <array>
#include <vector>

#include "examples/scene/Camera.h"

namespace scene {

/// Three arrows, rings or bars around a centre, along the axes of the world, of the same size in every view. A value.
class Handles {
public:
    enum class Mode { move, rotate, scale };

    Handles(Mode mode, urLinear::Point const& centre, Projection const& projection);

    [[nodiscard]] Mode mode() const { return mode_; }
    [[nodiscard]] urLinear::Point const& centre() const { return centre_; }
    [[nodiscard]] static urLinear::Vector axis(int number);
    /// The points of a handle, in pixels.
    [[nodiscard]] std::vector<urLinear::Point2> curve(int axis) const;
    /// The handle at a pixel; -1 for none.
    [[nodiscard]] int axisAt(double x, double y) const;
    /// How far a pixel is along an axis, or its angle about it.
    [[nodiscard]] double valueAt(int axis, double x, double y) const;

private:
    [[nodiscard]] urLinear::Point2 pixel(urLinear::Point const& world) const;

    Mode mode_;
    urLinear::Point centre_;
    Projection projection_;
    double size_;  ///< in the world
};

}  // namespace scene
