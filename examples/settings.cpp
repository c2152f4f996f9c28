// The smallest useful program: read settings from JSON, use them with defaults, change them, write them back.
#include <cstdio>

#include "plst/JsonReport.h"
#include "plst/make.h"

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

    auto const radius = nxPLST::get<double>(settings, "radius", 1.0);
    auto const visible = nxPLST::get<bool>(settings, "visible", true);  // not in the text, so the default is used
    auto const axis = nxPLST::get<urLinear::Vector>(settings, "axis");
    settings->insert("offset", axis * (2 * radius));
    settings->insert("visible", visible);

    urString::CString written;
    if (!nxPLST::writeJson(written, settings)) return 1;
    std::puts(written.c_str());
    return 0;
}
