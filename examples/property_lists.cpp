// A tour of item trees: build one, read it, copy it, and store a structure of your own in it.
#include <cstdio>
#include <iostream>

#include "plst/Parser.h"
#include "plst/make.h"

// [structure]
enum class Shape { round, flat };
constexpr auto namesOf(Shape* /*type*/) {
    return std::array{std::pair(Shape::round, "round"), std::pair(Shape::flat, "flat")};
}

struct Tip {
    Shape shape = Shape::round;
    std::vector<double> falloff;
    std::optional<std::string> texture;
};
template <class Visit>
void listMembers(Tip& tip, Visit&& visit) {
    visit("shape", tip.shape);
    visit("falloff", tip.falloff);
    visit("texture", tip.texture);
}
// [structure]

// [own]
/// An angle in radians, which is kept in degrees.
struct Angle {
    double radians = 0;
};
void convert(ur::Reference<nxPLST::Item>& out, Angle const& angle) { nxPLST::convert(out, angle.radians * 57.29578); }
void convert(Angle& out, ur::Reference<nxPLST::Item const> const& item) {
    out.radians = nxPLST::valueOf<double>(item) / 57.29578;
}
template <>
struct nxPLST::Shape<Angle> : nxPLST::Shape<double> {};
// [own]

int main() {
    // [build]
    auto const brush = nxPLST::dictionary({{"name", "clay"},
                                           {"strength", nxSupport::BoundedDouble(0.25, 0.0, 1.0)},
                                           {"position", urLinear::Point(1, 2, 3)},
                                           {"presets", {"soft", "hard"}}});
    brush->insert("size", 1.5);
    // [build]

    // [ask]
    auto const position = nxPLST::get<urLinear::Point>(brush, "position");
    std::printf("position %g %g %g\n", position.x, position.y, position.z);
    std::printf("visible %d\n", nxPLST::get<bool>(brush, "visible", true));  // the key does not exist
    std::cout << *nxPLST::at(brush, ".presets[-1]") << '\n';
    // [ask]

    // [parse]
    nxPLST::Parser parser(brush->get("strength"), false);
    if (parser.parseNumericArray(3)) std::printf("strength has three numbers\n");
    // [parse]

    // [copy]
    auto const copy = asDictionary(brush->clone());
    copy->insert("name", "wax");
    std::printf("same shape %d, same values %d\n", copy->congruent(*brush), *copy == *brush);
    // [copy]

    // [keep]
    brush->insert("tip", Tip{Shape::flat, {1, 0.5, 0}, {}});
    auto const tip = nxPLST::get<Tip>(brush, "tip");
    std::printf("%zu steps\n", tip.falloff.size());
    std::cout << *brush->get("tip") << '\n';
    // [keep]

    // [turn]
    brush->insert("turns", std::vector{Angle{1.570796}, Angle{}});
    std::printf("first turn %.3f\n", nxPLST::get<std::vector<Angle>>(brush, "turns").front().radians);
    // [turn]
    return 0;
}
