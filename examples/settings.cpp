// The smallest useful program: read settings from JSON, use them with defaults, change them, write them back.
#include <cstdio>

#include "plst/JsonReport.h"
#include "plst/casts.h"
#include "plst/convert.h"

int main() {
    ur::Reference<nxPLST::Item> root;
    nxPLST::JsonReport report;
    char const* const text = "{\"radius\": 2.5, \"axis\": [0, 0, 1], // up\n \"label\": \"handle\"}";
    if (!nxPLST::convertFromJSON(root, text, report)) {
        std::fprintf(stderr, "settings:%zu:%zu: %s\n", report.location.line, report.location.column,
                     report.reason.c_str());
        return 1;
    }
    auto const settings = nxPLST::asDictionary(root);
    if (!settings) return 1;

    double radius = 1.0;
    bool visible = true;  // not in the text: the default stays
    urLinear::Vector axis;
    convert(radius, settings->get("radius"));
    convert(visible, settings->get("visible"));
    convert(axis, settings->get("axis"));

    ur::Reference<nxPLST::Item> value;
    nxPLST::convert(value, axis * (2 * radius));
    settings->insert("offset", value);
    nxPLST::convert(value, visible);
    settings->insert("visible", value);

    urString::CString written;
    if (!nxPLST::convertToJSON(written, settings)) return 1;
    std::fputs(written.c_str(), stdout);
    return 0;
}
