// Reads JSON, reports faults and losses, and writes it strictly and in a readable style.
#include <cstdio>

#include "plst/JsonReport.h"
#include "plst/casts.h"

using ur::Reference;
using urString::CString;

namespace {

void readAndWrite() {
    // [read]
    Reference<nxPLST::Item> item;
    if (nxPLST::convertFromJSON(item, R"({"name": "clay", "size": [0.1, 4], "tip": null})")) {
        std::printf("%d members\n", asDictionary(item)->size());
    }
    // [read]

    // [write]
    CString text;
    if (nxPLST::convertToJSON(text, item)) std::printf("%s", text.c_str());
    // [write]

    // [style]
    CString line;
    if (nxPLST::writeJson(line, item, {.indent = 0})) std::printf("%s\n", line.c_str());
    // [style]

    // [dump]
    std::printf("%s", nxPLST::asJSON(item).c_str());
    // [dump]
}

void reportFault() {
    // [fault]
    Reference<nxPLST::Item> item;
    nxPLST::JsonReport report;
    if (!nxPLST::convertFromJSON(item, "{\"name\": \"clay\",\n \"size\": [0.1 4]}", report)) {
        std::printf("%zu:%zu: %s\n", report.location.line, report.location.column, report.reason.c_str());
    }
    // [fault]
}

void reportLosses() {
    // [losses]
    Reference<nxPLST::Item> item;
    nxPLST::JsonReport report;
    if (nxPLST::convertFromJSON(item, R"({"id": 9007199254740993, "tags": ["a", null], "id": 2})", report)) {
        for (auto const& loss : report.losses) {
            std::printf("%zu:%zu: %s at %s\n", loss.location.line, loss.location.column, describe(loss.kind),
                        loss.path.c_str());
        }
    }
    // [losses]
}

}  // namespace

int main() {
    readAndWrite();
    reportFault();
    reportLosses();
    return 0;
}
