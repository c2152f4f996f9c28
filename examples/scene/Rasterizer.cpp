// Fills triangles by their edge functions, nearest pixel first.
#include "examples/scene/Rasterizer.h"

#include <algorithm>
#include <cmath>

namespace scene {

using urGeom::CompactMesh;
using urLinear::AffineMatrix;
using urLinear::Point;
using urLinear::Vector;
using urLinear::VectorFlt;

namespace {

constexpr float nearestDistance = 1e-4F;
constexpr int thumbnailWidth = 40;

std::uint32_t byteOf(double part) { return static_cast<std::uint32_t>(std::lround(std::clamp(part, 0.0, 1.0) * 255)); }

/// Both sides are lit, so that open and turned meshes are seen.
std::uint32_t shaded(urUtil::Color const& colour, double light) {
    double const brightness = 0.25 + 0.75 * std::abs(light);
    return 0xFF000000U | byteOf(colour.r * brightness) << 16U | byteOf(colour.g * brightness) << 8U |
           byteOf(colour.b * brightness);
}

/// The pixels of a row that lie in a triangle.
struct Span {
    float begin, end;

    /// Leaves those where `value + step * x` is at least 0.
    void cut(float value, float step) {
        constexpr float seam = 1e-3F;  // neighbours overlap a little instead of leaving gaps
        if (step > 0) begin = std::max(begin, -value / step - seam);
        if (step < 0) end = std::min(end, -value / step + seam);
        if (step == 0 && value < 0) end = begin;
    }
};

}  // namespace

Rasterizer::Rasterizer(Projection const& projection, std::uint32_t background)
    : projection_(projection),
      pixels_(static_cast<std::size_t>(projection.width()) * static_cast<std::size_t>(projection.height()), background),
      nearness_(pixels_.size(), 0),
      numbers_(pixels_.size(), 0) {}

void Rasterizer::draw(Shape const& shape, std::size_t first, std::size_t last) {
    AffineMatrix const toCamera = shape.place * projection_.toCamera();
    // The light comes from above the camera's left shoulder. In the space of the mesh a normal is not transformed.
    AffineMatrix rotation = toCamera;
    rotation.setTranslation({});
    VectorFlt const light((Vector(-0.4, -0.6, -0.7).normalized() * rotation.inverse()).normalized());
    auto const focal = static_cast<float>(projection_.focalLength());
    auto const middleX = static_cast<float>(projection_.width()) / 2;
    auto const middleY = static_cast<float>(projection_.height()) / 2;
    float m[AffineMatrix::size];
    for (int i = 0; i < AffineMatrix::size; ++i) m[i] = static_cast<float>(toCamera.coefficient(i));

    auto const vertices = shape.mesh->vertices();
    auto const triangles = shape.mesh->triangles();
    for (std::size_t i = first; i < std::min(last, triangles.size()); ++i) {
        Corner corners[3];
        bool isInFront = true;
        for (std::size_t k = 0; k < 3; ++k) {
            auto const& v = vertices[triangles[i][k]];
            float const z = v.x * m[2] + v.y * m[5] + v.z * m[8] + m[11];
            isInFront = isInFront && z > nearestDistance;
            float const nearness = 1 / z;
            corners[k] = {middleX + (v.x * m[0] + v.y * m[3] + v.z * m[6] + m[9]) * focal * nearness,
                          middleY + (v.x * m[1] + v.y * m[4] + v.z * m[7] + m[10]) * focal * nearness, nearness};
        }
        if (!isInFront) continue;
        VectorFlt const normal =
            shape.normals ? (*shape.normals)[i] : VectorFlt(shape.mesh->normal(static_cast<std::uint32_t>(i)).vector());
        fill(corners[0], corners[1], corners[2], shaded(shape.colour, normal.dot(light)), shape.number);
    }
}

void Rasterizer::fill(Corner const& a, Corner const& b, Corner const& c, std::uint32_t pixel, std::uint32_t number) {
    auto const bound = [](float value, int size) {
        return static_cast<int>(std::clamp(value, 0.0F, static_cast<float>(size)));
    };
    int const left = bound(std::floor(std::min({a.x, b.x, c.x})), projection_.width());
    int const right = bound(std::ceil(std::max({a.x, b.x, c.x})) + 1, projection_.width());
    int const top = bound(std::floor(std::min({a.y, b.y, c.y})), projection_.height());
    int const bottom = bound(std::ceil(std::max({a.y, b.y, c.y})) + 1, projection_.height());
    float const area = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    if (area == 0 || !std::isfinite(area)) return;
    float const stepB = (c.y - a.y) / area, stepC = (a.y - b.y) / area;
    float const stepNearness = stepB * (b.nearness - a.nearness) + stepC * (c.nearness - a.nearness);
    for (int y = top; y < bottom; ++y) {
        float const dy = static_cast<float>(y) + 0.5F - a.y;
        float const dx = 0.5F - a.x;
        float const partB = (dx * (c.y - a.y) - dy * (c.x - a.x)) / area;
        float const partC = (dy * (b.x - a.x) - dx * (b.y - a.y)) / area;
        Span span{static_cast<float>(left), static_cast<float>(right)};
        span.cut(partB, stepB);
        span.cut(partC, stepC);
        span.cut(1 - partB - partC, -stepB - stepC);
        if (!(span.begin < span.end)) continue;
        int const first = static_cast<int>(std::ceil(span.begin));
        float nearness = a.nearness + partB * (b.nearness - a.nearness) + partC * (c.nearness - a.nearness) +
                         stepNearness * static_cast<float>(first);
        auto const row = static_cast<std::size_t>(y) * static_cast<std::size_t>(projection_.width());
        for (int x = first; static_cast<float>(x) <= span.end && x < right; ++x, nearness += stepNearness) {
            std::size_t const at = row + static_cast<std::size_t>(x);
            if (nearness <= nearness_[at]) continue;
            nearness_[at] = nearness;
            pixels_[at] = pixel;
            numbers_[at] = number;
        }
    }
}

std::uint32_t Rasterizer::numberAt(int x, int y) const {
    if (x < 0 || y < 0 || x >= projection_.width() || y >= projection_.height()) return 0;
    return numbers_[static_cast<std::size_t>(y) * static_cast<std::size_t>(projection_.width()) +
                    static_cast<std::size_t>(x)];
}

Point Rasterizer::placeAt(int x, int y) const {
    auto const at =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(projection_.width()) + static_cast<std::size_t>(x);
    double const z = 1 / static_cast<double>(nearness_[at]);
    double const scale = z / projection_.focalLength();
    Point const seen((x + 0.5 - projection_.width() / 2.0) * scale, (y + 0.5 - projection_.height() / 2.0) * scale, z);
    return seen * projection_.toCamera().inverse();
}

Picture thumbnailOf(CompactMesh const& mesh) {
    Camera camera;
    camera.frame(mesh.bounds().range());
    Rasterizer rasterizer(Projection(camera, thumbnailWidth, thumbnailWidth), 0);
    rasterizer.draw({&mesh, nullptr, {}, {0.8F, 0.8F, 0.8F}, 1}, 0, mesh.triangleCount());
    return {thumbnailWidth, rasterizer.pixels()};
}

}  // namespace scene
