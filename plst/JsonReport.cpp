// Reading JSON with a report.
#include "plst/JsonReport.h"

#include <utility>

#include "plst/impl/JsonInspector.h"

namespace nxPLST {

namespace {

/// `text` may belong to the tree that `out` still holds.
template <class... Text>
bool read(ur::Reference<Item>& out, JsonReport& report, Text const&... text) {
    report = {};
    ur::Reference<Item> tree;
    impl::JsonInspector inspector(std::string_view(text...));
    if (!convertFromJSON(tree, text...)) {
        inspector.reportFault(report);
        return false;
    }
    inspector.reportLosses(report);
    out = std::move(tree);
    return true;
}

}  // namespace

bool convertFromJSON(ur::Reference<Item>& out, urString::CString const& text, JsonReport& report) {
    return read(out, report, text);
}

bool convertFromJSON(ur::Reference<Item>& out, char const* text, unsigned int length, JsonReport& report) {
    return read(out, report, text, length);
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
