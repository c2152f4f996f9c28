// Tests descriptions: which are refused, and which values they admit.
#include <cmath>
#include <limits>

#include "support/documents/tests/Scene.h"

namespace nxSupport::test {
namespace {

using testing::HasSubstr;

TEST(Catalog, RefusesMistakesAndNamesThem) {
    struct Case {
        ClassDescription description;
        char const* reason;
    };
    auto const with = [](PropertyDescription property) {
        return ClassDescription{.name = "Bad", .base = "Shape", .properties = {std::move(property)}};
    };
    Case const cases[] = {
        {{}, "class \"\": has no name"},
        {{.name = "Ball"}, "is described already"},
        {{.name = "Bad", .version = 0}, "has a version that is not above 0"},
        {{.name = "Bad", .base = "Bad"}, "unknown base \"Bad\""},
        {{.name = "Bad", .children = {"Bad", "Bald"}}, "unknown child class \"Bald\""},
        {{.name = "Bad", .properties = {{.name = "a"}, {.name = "a"}}}, "property \"a\" is described twice"},
        {with({}), "property \"\" has no name"},
        {with({.name = "size"}), "is one of the base"},
        {with({.name = "a", .value = 5, .minimum = 0, .maximum = 4}), "has a default that is above 4"},
        {with({.name = "a", .value = {0, -1}, .minimum = 0}), "has a default that is below 0"},
        {with({.name = "a", .value = 5, .minimum = 4, .maximum = 3}), "minimum above its maximum"},
        {with({.name = "a", .value = 5, .step = 0}), "step that is not above 0"},
        {with({.name = "a", .value = 5, .maximum = std::nan("")}), "not finite"},
        {with({.name = "a", .value = "x", .choices = {"y", "z"}}), "has a default that is none of the choices"},
        {with({.name = "a", .value = "x", .choices = {"x", 1}}), "choice that is a number, expected a text"},
        {with({.name = "a", .value = "x", .reference = true}), "default that is no identity"},
        {with({.name = "a", .value = 1, .reference = true}), "default must be a text"},
    };
    ObjectCatalog catalog;
    describe(catalog);
    for (auto const& [description, reason] : cases) {
        EXPECT_THAT(std::string(catalog.add(description).message()), HasSubstr(reason));
        EXPECT_FALSE(catalog.find("Bad"));
    }
    EXPECT_TRUE(catalog.add({.name = "Bad", .base = "Shape", .children = {"Bad", "Ball"}}).ok());
    auto const made = catalog.find("Bad");
    EXPECT_TRUE(made->isA("Node") && made->mayContain(*made) && !made->mayContain(*catalog.find("Shape")));
    EXPECT_TRUE(catalog.find("Group")->mayContain(*catalog.find("Ball"))) << "derived from an allowed class";
    EXPECT_EQ(made->properties().front().name, "name") << "those of the base first";
}

TEST(Catalog, SaysWhatIsWrongWithAValueAndFindsTheNearest) {
    PropertyDescription const number{.name = "n", .value = 1, .minimum = 0, .maximum = 10};
    PropertyDescription const point{.name = "p", .value = {0, 0, 0}, .maximum = 5};
    PropertyDescription const list{.name = "l", .value = ur::Reference<nxPLST::Item>(ur::make<nxPLST::Array>())};
    PropertyDescription const choice{.name = "c", .value = "x", .choices = {"x", "y"}};
    PropertyDescription const any{.name = "a"};
    struct Case {
        PropertyDescription const& property;
        nxPLST::Value value;
        char const* fault;
        nxPLST::Value nearest;
    };
    Case const cases[] = {
        {number, 10, "", 10},
        {number, 11, "is above 10", 10},
        {number, -1, "is below 0", 0},
        {number, std::numeric_limits<double>::infinity(), "is above 10", 10},
        {number, std::nan(""), "is not a number", nullptr},
        {number, "1", "is a text, expected a number", nullptr},
        {number, nullptr, "is nothing", nullptr},
        {point, {1, 2, 7}, "is above 5", {1, 2, 5}},
        {point, {1, 2}, "is an array of another structure than the default", nullptr},
        {point, {1, 2, "3"}, "is an array of another structure than the default", nullptr},
        {list, {1, "2"}, "", {1, "2"}},
        {choice, "z", "is none of the choices", nullptr},
        {any, {true}, "", {true}},
    };
    for (auto const& [property, value, fault, nearest] : cases) {
        EXPECT_EQ(property.faultOf(value.item()), fault) << property.name;
        EXPECT_TRUE(nxPLST::equal(property.nearest(value.item()), nearest.item())) << property.name << fault;
    }
}

}  // namespace
}  // namespace nxSupport::test
