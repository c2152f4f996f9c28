// Where a view looks from.
#pragma once

#include <algorithm>

#include "foundation/urLinear/AffineMatrix.h"
#include "foundation/urLinear/Range3d.h"

namespace scene {

/// Looks at a target from a distance, upright; z is up. A value.
struct Camera {
    urLinear::Point target;
    double distance = 5;
    double yaw = 0.6;    ///< in radians, about the vertical axis
    double pitch = 0.4;  ///< in radians, above the ground

    void orbit(double dx, double dy);
    /// Moves the target by pixels of a view of that height.
    void pan(double dx, double dy, int height);
    void zoom(double factor) { distance = std::clamp(distance * factor, 1e-6, 1e12); }
    void frame(urLinear::Range3d const& box);

    /// From the world to the camera: x to the right, y down, z forward.
    [[nodiscard]] urLinear::AffineMatrix matrix() const;
};

/// A camera and the pixels of a view.
class Projection {
public:
    Projection(Camera const& camera, int width, int height);

    /// The pixel of a point; z is the distance forward, and only points with a positive one are in view.
    [[nodiscard]] urLinear::Point pixel(urLinear::Point const& world) const;
    /// The line from the eye through a pixel.
    [[nodiscard]] urLinear::Line ray(double x, double y) const;
    /// The pixels that a length takes at a point.
    [[nodiscard]] double scaleAt(urLinear::Point const& world) const;

    [[nodiscard]] urLinear::AffineMatrix const& toCamera() const { return toCamera_; }
    [[nodiscard]] double focalLength() const { return focal_; }
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }

private:
    urLinear::AffineMatrix toCamera_;
    urLinear::AffineMatrix toWorld_;
    double focal_;  ///< in pixels
    int width_;
    int height_;
};

}  // namespace scene
