// Reads JSON and fills a report.
#include "plst/JsonReport.h"

#include <string_view>
#include <utility>

#include "plst/impl/json/JsonInspector.h"
#include "plst/impl/json/readJson.h"

namespace nxPLST {

namespace {

bool read(ur::Reference<Item>& out, std::string_view text, JsonReport& report) {
    report = {};
    ur::Reference<Item> tree;  // `out` may own the text until the report is written
    impl::JsonReading const reading = impl::readJson(tree, text);
    if (reading == impl::JsonReading::refused) {
        impl::JsonInspector(text).reportFault(report);
        return false;
    }
    if (reading == impl::JsonReading::perhapsLossy) impl::JsonInspector(text).reportLosses(report);
    out = std::move(tree);
    return true;
}

}  // namespace

bool convertFromJSON(ur::Reference<Item>& out, std::string_view text, JsonReport& report) {
    return read(out, text, report);
}

bool convertFromJSON(ur::Reference<Item>& out, char const* text, unsigned int length, JsonReport& report) {
    return read(out, {text, length}, report);
}

char const* describe(JsonLoss::Kind kind) noexcept {
    switch (kind) {
        case JsonLoss::Kind::nullValue: return "null has no item";
        case JsonLoss::Kind::repeatedKey: return "repeated key";
        case JsonLoss::Kind::roundedInteger: return "rounded integer";
    }
    return "";
}

}  // namespace nxPLST
