// Any bytes as JSON: accepted exactly when yajl accepts them, and unchanged by writing and reading again.
#include <yajl/yajl_parse.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "plst/json.h"

namespace {

bool acceptedByYajl(std::uint8_t const* bytes, std::size_t size) {
    // Both number callbacks, so that numbers that fit neither type are refused.
    yajl_callbacks callbacks{};
    callbacks.yajl_integer = [](void*, long long) { return 1; };
    callbacks.yajl_double = [](void*, double) { return 1; };
    yajl_handle const parser = yajl_alloc(&callbacks, nullptr, nullptr);
    yajl_config(parser, yajl_allow_comments, 1);
    bool const accepted =
        yajl_parse(parser, bytes, size) == yajl_status_ok && yajl_complete_parse(parser) == yajl_status_ok;
    yajl_free(parser);
    return accepted;
}

void require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    ur::Reference<nxPLST::Item> item;
    bool const accepted =
        nxPLST::convertFromJSON(item, reinterpret_cast<char const*>(bytes), static_cast<unsigned>(size));
    require(accepted == acceptedByYajl(bytes, size), "accepted exactly when yajl accepts");
    if (!accepted) return 0;

    urString::CString text;
    if (!nxPLST::convertToJSON(text, item)) return 0;  // nested too deeply for the writer
    ur::Reference<nxPLST::Item> again;
    urString::CString textAgain;
    require(nxPLST::convertFromJSON(again, text), "what was written can be read");
    require(nxPLST::convertToJSON(textAgain, again) && text == textAgain, "writing again gives the same text");
    return 0;
}
