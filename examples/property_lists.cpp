// A tour of item trees: build one, ask it, copy it, convert it, and write it as JSON.
#include <cstdio>

#include "plst/Parser.h"
#include "plst/casts.h"
#include "plst/convert.h"

using nxPLST::Dictionary;
using nxPLST::Item;
using ur::Reference;

int main() {
    // [build]
    auto brush = ur::make<Dictionary>();
    Reference<Item> value;
    nxPLST::convert(value, "clay");
    brush->insert("name", value);
    nxPLST::convert(value, nxSupport::BoundedDouble(0.25, 0.0, 1.0));
    brush->insert("strength", value);
    nxPLST::convert(value, urLinear::Point(1, 2, 3));
    brush->insert("position", value);
    // [build]

    // [ask]
    nxPLST::Parser parser(brush->get("position"), false);
    if (parser.parseNumericArray(3)) {
        urLinear::Point position;
        nxPLST::convert(position, brush->get("position"));
        std::printf("position %g %g %g\n", position.x, position.y, position.z);
    }
    bool visible = true;  // no such key: stays as it is
    nxPLST::convert(visible, brush->get("visible"));
    std::printf("visible %d\n", visible);
    // [ask]

    // [copy]
    Reference<Dictionary> const copy = asDictionary(brush->clone());
    copy->insert("name", ur::make<nxPLST::String>("wax"));
    std::printf("%s, %s\n", asString(brush->get("name"))->value().c_str(),
                asString(copy->get("name"))->value().c_str());
    std::printf("same shape: %d\n", copy->congruent(*brush));
    // [copy]
    return 0;
}
