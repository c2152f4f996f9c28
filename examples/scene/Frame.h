// One picture of the scene.
#pragma once

#include <chrono>

#include "examples/scene/Editor.h"
#include "examples/scene/Rasterizer.h"

namespace scene {

/// Draws the visible meshes of a document in slices, so that no picture holds up the program.
class Frame {
public:
    /// Quick: large meshes are drawn simplified. What the cache does not have yet is left out.
    enum class Quality { quick, full };

    Frame(Editor& editor, Projection const& projection, Quality quality);

    /// Draws for about that time. True once the picture is complete.
    bool drawFor(std::chrono::milliseconds time);
    [[nodiscard]] Rasterizer const& rasterizer() const { return rasterizer_; }
    /// Whether full quality would show the same.
    [[nodiscard]] bool isFull() const { return isFull_; }
    [[nodiscard]] std::size_t triangleCount() const;

    /// Null for the background, and for what is gone.
    [[nodiscard]] nxSupport::Object* objectAt(int x, int y) const;
    /// The objects that show in a rectangle, each once.
    [[nodiscard]] std::vector<nxSupport::Object*> objectsIn(int left, int top, int right, int bottom) const;

private:
    struct Drawn {
        Mesh mesh;
        std::shared_ptr<Normals const> normals;
        Rasterizer::Shape shape;
    };
    void collect(nxSupport::Object const& object, urLinear::AffineMatrix const& place);
    void add(nxSupport::Object const& object, urLinear::AffineMatrix const& place);
    [[nodiscard]] bool isDistant(Shape const& shape, urLinear::AffineMatrix const& place) const;

    Editor& editor_;
    Quality const quality_;
    bool isFull_ = true;
    std::vector<Drawn> drawn_;
    std::vector<urOS::Uuid> objects_;  ///< by their number less one
    std::vector<urOS::Uuid> selected_;
    Rasterizer rasterizer_;
    std::size_t shape_ = 0;  ///< the next one to draw
    std::size_t triangle_ = 0;
};

}  // namespace scene
