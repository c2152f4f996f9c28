// Reads any bytes as JSON. They must be accepted if and only if yajl accepts them, both readers must build the same
// tree, the report must fit, and written text must stay the same when it is read and written again.
#include <yajl/yajl_parse.h>

#include <cstddef>
#include <cstdint>

#include "fuzz/require.h"
#include "plst/JsonReport.h"

namespace {

using nxPLST::Item;
using urString::CString;

bool acceptedByYajl(CString const& text) {
    // Set both number callbacks, so that yajl refuses numbers that fit neither type.
    yajl_callbacks callbacks{};
    callbacks.yajl_integer = [](void*, long long) { return 1; };
    callbacks.yajl_double = [](void*, double) { return 1; };
    yajl_handle const parser = yajl_alloc(&callbacks, nullptr, nullptr);
    yajl_config(parser, yajl_allow_comments, 1);
    auto const* bytes = reinterpret_cast<unsigned char const*>(text.data());
    bool const accepted =
        yajl_parse(parser, bytes, text.size()) == yajl_status_ok && yajl_complete_parse(parser) == yajl_status_ok;
    yajl_free(parser);
    return accepted;
}

/// Empty if strict JSON cannot hold the tree.
CString written(ur::Reference<Item> const& item) {
    CString text;
    return nxPLST::convertToJSON(text, item) ? text : CString();
}

void checkReport(CString const& text, bool accepted) {
    ur::Reference<Item> item;
    nxPLST::JsonReport report;
    require(nxPLST::convertFromJSON(item, text, report) == accepted, "a report changes nothing");
    require(report.reason.empty() == accepted, "what is refused has a reason");
    require(report.location.offset <= text.size(), "a fault lies in the text");
    require(accepted || report.lossCount == 0, "what is refused loses nothing");
    require(report.losses.size() <= nxPLST::JsonReport::mostLosses, "losses are bounded");
}

/// Compares from the second writing on, because -0 becomes 0 and large integers cannot be read back.
void checkRoundTrip(CString const& text) {
    ur::Reference<Item> again;
    if (text.empty() || !nxPLST::convertFromJSON(again, text)) return;
    CString const second = written(again);
    ur::Reference<Item> once;
    require(nxPLST::convertFromJSON(once, second), "what was read and written can be read");
    require(written(once) == second, "writing again gives the same text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    CString const text(reinterpret_cast<char const*>(bytes), size);
    bool const accepted = acceptedByYajl(text);
    ur::Reference<Item> item;
    require(nxPLST::convertFromJSON(item, text) == accepted, "accepted exactly when yajl accepts");
    checkReport(text, accepted);
    if (!accepted) return 0;

    // A leading comment makes yajl itself read the text.
    ur::Reference<Item> careful;
    require(nxPLST::convertFromJSON(careful, CString("/**/").append(text)), "a comment changes nothing");
    require(!item == !careful && (!item || item->congruent(*careful)), "both readers make the same tree");
    CString const first = written(item);
    require(first == written(careful), "both readers make the same values");
    require(!nxPLST::asJSON(item).empty(), "every tree has a dump");
    checkRoundTrip(first);
    CString compact;
    require(nxPLST::writeJson(compact, item, {.indent = 0}), "what is read can be written");
    require(nxPLST::convertFromJSON(careful, compact), "what is written in any style can be read");
    return 0;
}
