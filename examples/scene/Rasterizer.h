// Draws meshes into pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "examples/scene/Camera.h"
#include "examples/scene/resources.h"
#include "foundation/urUtil/Color.h"

namespace scene {

/// Flat-shaded triangles in depth order, with the number of the object that each pixel shows.
class Rasterizer {
public:
    Rasterizer(Projection const& projection, std::uint32_t background);

    /// What is drawn: its data must stay alive. Without normals they are computed.
    struct Shape {
        urGeom::CompactMesh const* mesh;
        Normals const* normals;
        urLinear::AffineMatrix place;
        urUtil::Color colour;
        std::uint32_t number;  ///< above 0
    };
    /// Draws triangles from `first` to before `last`.
    void draw(Shape const& shape, std::size_t first, std::size_t last);

    [[nodiscard]] Projection const& projection() const { return projection_; }
    [[nodiscard]] std::vector<std::uint32_t> const& pixels() const { return pixels_; }
    /// 0 for the background, and outside.
    [[nodiscard]] std::uint32_t numberAt(int x, int y) const;
    /// The place in the world of what a pixel shows. Requires: `numberAt` is not 0.
    [[nodiscard]] urLinear::Point placeAt(int x, int y) const;

private:
    struct Corner {
        float x, y;
        float nearness;  ///< the inverse of the distance, which is linear on the screen
    };
    void fill(Corner const& a, Corner const& b, Corner const& c, std::uint32_t pixel, std::uint32_t number);

    Projection const projection_;
    std::vector<std::uint32_t> pixels_;
    std::vector<float> nearness_;
    std::vector<std::uint32_t> numbers_;
};

/// A picture of a mesh by itself.
[[nodiscard]] Picture thumbnailOf(urGeom::CompactMesh const& mesh);

}  // namespace scene
