// Chooses meshes and draws them.
#include "examples/scene/Frame.h"

#include <algorithm>
#include <numeric>

namespace scene {

using nxSupport::Object;
using urGeom::CompactMesh;
using urLinear::AffineMatrix;
using urUtil::Color;

namespace {

constexpr std::uint32_t background = 0;        // nothing: the floor shows
constexpr std::size_t slice = 1000;            // triangles between two looks at the clock
constexpr std::size_t quickTriangles = 50000;  // of a mesh that is drawn in full while something moves
constexpr double distantPixels = 40;           // a mesh of that size is drawn simplified

Color colourOf(Object const& object, bool isSelected) {
    Color colour = object.get<Color>("colour");
    auto const brightness = object.get<float>("brightness", 1);
    for (int i = 0; i < 3; ++i) {
        constexpr Color selection(1, 0.6F, 0.1F);
        colour[i] = isSelected ? (colour[i] + selection[i]) / 2 : colour[i];
        colour[i] *= brightness;
    }
    return colour;
}

}  // namespace

// [frame]
Frame::Frame(Editor& editor, Projection const& projection, Quality quality)
    : editor_(editor), quality_(quality), rasterizer_(projection, background) {
    for (Object const* const object : editor.document().selection()) selected_.push_back(object->id());
    editor.cache().startInteraction();
    for (Object const& child : editor.document().root().children()) collect(child, {});
    editor.cache().endInteraction();
}

void Frame::collect(Object const& object, AffineMatrix const& above) {
    if (!object.get<bool>("visible")) return;
    AffineMatrix const place = placeOf(object) * above;
    if (object.objectClass().isA("Mesh")) add(object, place);
    for (Object const& child : object.children()) collect(child, place);
}

void Frame::add(Object const& object, AffineMatrix const& place) {
    Shape const& shape = editor_.shapes().of(object);
    Mesh mesh = latestMesh(shape);
    Shim normals = shape.normals;
    if (!mesh) return;
    bool const isLatest = access<CompactMesh>(shape.meshes.back()) == mesh;
    auto const detail = object.get<std::string>("detail");
    bool const isAutomatic = detail == "automatic";
    bool const isHurried = isAutomatic && quality_ == Quality::quick && mesh->triangleCount() > quickTriangles;
    isFull_ = isFull_ && !isHurried;
    if (isHurried || detail == "simplified" || (isAutomatic && isDistant(shape, place))) {
        if (Mesh const small = access<CompactMesh>(shape.simplified)) {
            mesh = small;
            normals = shape.simplifiedNormals;
        }
    }
    objects_.push_back(object.id());
    bool const isSelected = std::ranges::find(selected_, object.id()) != selected_.end();
    Drawn drawn{mesh, isLatest ? access<Normals>(normals) : nullptr, {}};
    drawn.shape = {mesh.get(), drawn.normals.get(), place, colourOf(object, isSelected),
                   static_cast<std::uint32_t>(objects_.size())};
    drawn_.push_back(std::move(drawn));
}
// [frame]

bool Frame::isDistant(Shape const& shape, AffineMatrix const& place) const {
    auto const box = access<urGeom::BoundingBox>(shape.bounds);
    if (!box) return false;
    auto const range = box->range().transformed(place);
    return range.size().length() * rasterizer_.projection().scaleAt(range.center()) < distantPixels;
}

std::size_t Frame::triangleCount() const {
    return std::accumulate(drawn_.begin(), drawn_.end(), std::size_t(0),
                           [](std::size_t sum, Drawn const& drawn) { return sum + drawn.mesh->triangleCount(); });
}

bool Frame::drawFor(std::chrono::milliseconds time) {
    auto const end = std::chrono::steady_clock::now() + time;
    while (shape_ < drawn_.size()) {
        Drawn const& drawn = drawn_[shape_];
        rasterizer_.draw(drawn.shape, triangle_, triangle_ + slice);
        triangle_ += slice;
        if (triangle_ >= drawn.mesh->triangleCount()) {
            ++shape_;
            triangle_ = 0;
        }
        if (std::chrono::steady_clock::now() >= end) break;
    }
    return shape_ == drawn_.size();
}

Object* Frame::objectAt(int x, int y) const {
    auto const number = rasterizer_.numberAt(x, y);
    return number > 0 ? editor_.document().find(objects_[number - 1]) : nullptr;
}

std::vector<Object*> Frame::objectsIn(int left, int top, int right, int bottom) const {
    std::vector<bool> seen(objects_.size() + 1);
    for (int y = std::max(top, 0); y < std::min(bottom, rasterizer_.projection().height()); ++y) {
        for (int x = std::max(left, 0); x < std::min(right, rasterizer_.projection().width()); ++x) {
            seen[rasterizer_.numberAt(x, y)] = true;
        }
    }
    std::vector<Object*> found;
    for (std::size_t i = 0; i < objects_.size(); ++i) {
        Object* const object = seen[i + 1] ? editor_.document().find(objects_[i]) : nullptr;
        if (object) found.push_back(object);
    }
    return found;
}

}  // namespace scene
