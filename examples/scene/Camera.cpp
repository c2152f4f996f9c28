// Orbiting, and projecting.
#include "examples/scene/Camera.h"

#include <cmath>
#include <numbers>

namespace scene {

using urLinear::AffineMatrix;
using urLinear::Line;
using urLinear::Normal;
using urLinear::Point;
using urLinear::Vector;

namespace {

constexpr double halfTangent = 0.4;  // of the vertical field of view
constexpr double radiansPerPixel = 0.01;
constexpr double steepest = std::numbers::pi / 2 - 0.01;

}  // namespace

void Camera::orbit(double dx, double dy) {
    yaw -= dx * radiansPerPixel;
    pitch = std::clamp(pitch + dy * radiansPerPixel, -steepest, steepest);
}

void Camera::pan(double dx, double dy, int height) {
    double const length = 2 * halfTangent * distance / height;
    AffineMatrix const toWorld = matrix().inverse();
    target -= Vector(dx, dy, 0) * length * toWorld;
}

void Camera::frame(urLinear::Range3d const& box) {
    if (box.empty()) return;
    target = box.center();
    distance = std::max(box.size().length() / halfTangent * 0.45, 1e-6);
}

AffineMatrix Camera::matrix() const {
    Vector const back(std::cos(pitch) * std::cos(yaw), std::cos(pitch) * std::sin(yaw), std::sin(pitch));
    Vector const right = Vector(0, 0, 1).cross(back).normalized();
    Vector const down = right.cross(back);
    AffineMatrix toWorld;
    toWorld.setAxis(0, right).setAxis(1, down).setAxis(2, -back).setTranslation(target + back * distance);
    return toWorld.inverse();
}

Projection::Projection(Camera const& camera, int width, int height)
    : toCamera_(camera.matrix()),
      toWorld_(toCamera_.inverse()),
      focal_(height / (2 * halfTangent)),
      width_(width),
      height_(height) {}

Point Projection::pixel(Point const& world) const {
    Point const seen = world * toCamera_;
    double const scale = focal_ / std::max(seen.z, 1e-9);
    return {width_ / 2.0 + seen.x * scale, height_ / 2.0 + seen.y * scale, seen.z};
}

Line Projection::ray(double x, double y) const {
    Vector const forward((x - width_ / 2.0) / focal_, (y - height_ / 2.0) / focal_, 1);
    return {toWorld_.translation(), Normal(forward * toWorld_)};
}

double Projection::scaleAt(Point const& world) const { return focal_ / std::max((world * toCamera_).z, 1e-9); }

}  // namespace scene
