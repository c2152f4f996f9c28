// Descriptions, and places from values.
#include "examples/scene/catalog.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "plst/plst.h"

namespace scene {

using nxSupport::Object;
using urLinear::AffineMatrix;
using urLinear::Point;
using urLinear::Vector;

namespace {

using Axes = std::array<Vector, 3>;
constexpr Axes plainAxes = {Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, 0, 1)};

}  // namespace

// [describe]
void describe(nxSupport::ObjectCatalog& catalog) {
    auto const add = [&](nxSupport::ClassDescription description) {
        auto const error = catalog.add(std::move(description));
        if (error.isError()) throw std::logic_error(std::string(error.message()));
    };
    add({.name = "Node", .properties = {{.name = "name", .value = "", .label = "Name"}}});
    add({.name = "Placed",
         .base = "Node",
         .properties = {{.name = "visible", .value = true, .label = "Visible"},
                        {.name = "position", .value = {0, 0, 0}, .label = "Position", .unit = "m"},
                        {.name = "axes", .value = plainAxes, .hidden = true}}});
    add({.name = "Scene", .base = "Node", .children = {"Placed"}});
    add({.name = "Group", .base = "Placed", .children = {"Placed"}});
    add({.name = "Mesh",
         .base = "Placed",
         .properties = {
             {.name = "colour",
              .value = {0.7, 0.7, 0.75, 1},
              .label = "Colour",
              .control = "colour",
              .minimum = 0,
              .maximum = 1},
             {.name = "brightness",
              .value = 1,
              .label = "Brightness",
              .unit = "%",
              .control = "slider",
              .minimum = 0,
              .maximum = 2},
             {.name = "detail",
              .value = "automatic",
              .label = "Detail",
              .choices = {"automatic", "full", "simplified"}},
             {.name = "file", .value = "", .label = "File", .readOnly = true},
             {.name = "strokes", .value = nxPLST::array({}), .hidden = true},
         }});
}
// [describe]

AffineMatrix placeOf(Object const& object) {
    AffineMatrix place;
    auto const axes = object.get<Axes>("axes", plainAxes);
    for (int k = 0; k < 3; ++k) place.setAxis(k, axes[static_cast<std::size_t>(k)]);
    return place.setTranslation(object.get<Point>("position"));
}

AffineMatrix worldOf(Object const& object) {
    AffineMatrix place = placeOf(object);
    for (Object const* above = object.parent(); above; above = above->parent()) place *= placeOf(*above);
    return place;
}

void setWorld(Object& object, AffineMatrix const& place) {
    AffineMatrix const local = object.parent() ? place * worldOf(*object.parent()).inverse() : place;
    object.set("position", local.translation());
    object.set("axes", Axes{local.axis(0), local.axis(1), local.axis(2)});
}

void addStroke(Object& mesh, Dab const& dab) {
    auto const strokes = ur::make<nxPLST::Array>();
    if (auto const former = nxPLST::asArray(mesh.value("strokes"))) *strokes = *former;
    strokes->insert(dab);
    mesh.setValue("strokes", strokes);
}

std::vector<Object*> topmost(std::span<Object* const> objects) {
    std::vector<Object*> result;
    std::ranges::copy_if(objects, std::back_inserter(result), [&](Object* object) {
        return std::ranges::none_of(objects,
                                    [&](Object* other) { return other != object && object->isWithin(*other); });
    });
    return result;
}

}  // namespace scene
