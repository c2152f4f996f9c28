// Curves, hits and values of handles.
#include "examples/scene/Handles.h"

#include <cmath>
#include <numbers>

#include "foundation/urLinear/Line.h"

namespace scene {

using urLinear::Line;
using urLinear::Point;
using urLinear::Point2;
using urLinear::Vector;

namespace {

constexpr double pixels = 80;
constexpr double reach = 7;  // pixels around a curve that hit it
constexpr int ringPoints = 48;

double distanceToSegment(Point2 const& p, Point2 const& a, Point2 const& b) {
    auto const along = b - a;
    double const squared = along.lengthSquared();
    double const part = squared > 0 ? std::clamp((p - a).dot(along) / squared, 0.0, 1.0) : 0;
    return p.distance(a + along * part);
}

}  // namespace

Handles::Handles(Mode mode, Point const& centre, Projection const& projection)
    : mode_(mode), centre_(centre), projection_(projection), size_(pixels / projection.scaleAt(centre)) {}

Vector Handles::axis(int number) {
    Vector axis;
    axis[number] = 1;
    return axis;
}

Point2 Handles::pixel(Point const& world) const {
    Point const seen = projection_.pixel(world);
    return {seen.x, seen.y};
}

std::vector<Point2> Handles::curve(int number) const {
    if (mode_ != Mode::rotate) return {pixel(centre_), pixel(centre_ + axis(number) * size_)};
    std::vector<Point2> ring;
    for (int i = 0; i <= ringPoints; ++i) {
        double const angle = 2 * std::numbers::pi * i / ringPoints;
        Vector const out = axis((number + 1) % 3) * std::cos(angle) + axis((number + 2) % 3) * std::sin(angle);
        ring.push_back(pixel(centre_ + out * size_));
    }
    return ring;
}

int Handles::axisAt(double x, double y) const {
    int nearest = -1;
    double least = reach;
    for (int number = 0; number < 3; ++number) {
        auto const points = curve(number);
        for (std::size_t i = 1; i < points.size(); ++i) {
            double const distance = distanceToSegment({x, y}, points[i - 1], points[i]);
            if (distance >= least) continue;
            least = distance;
            nearest = number;
        }
    }
    return nearest;
}

double Handles::valueAt(int number, double x, double y) const {
    Line const ray = projection_.ray(x, y);
    Vector const direction = ray.direction.vector();
    Vector const along = axis(number);
    Vector const toCentre = centre_ - ray.point;
    if (mode_ == Mode::rotate) {
        double const slope = direction.dot(along);
        if (std::abs(slope) < 1e-6) return 0;
        Vector const out = ray.at(toCentre.dot(along) / slope) - centre_;
        return std::atan2(out.dot(axis((number + 2) % 3)), out.dot(axis((number + 1) % 3)));
    }
    // The point on the axis that is nearest to the ray.
    double const slope = along.dot(direction);
    double const denominator = 1 - slope * slope;
    if (denominator < 1e-6) return 0;
    return (toCentre.dot(direction) * slope - toCentre.dot(along)) / denominator;
}

}  // namespace scene
