// JSON text to tree and back.
#include <rapidjson/error/en.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <memory>

#include "bench/inputs.h"
#include "bench/peers.h"
#include "bench/rows.h"
#include "plst/json.h"

namespace bench {
namespace {

boost::json::parse_options const anyDepth = [] {
    boost::json::parse_options options;
    options.max_depth = 1 << 20;
    return options;
}();

using Text = std::shared_ptr<std::string const>;

/// The trees live until the clock has stopped, because other rows measure destruction.
Sides readers(Document const& document) {
    Text const text = std::make_shared<std::string>(document.text);
    return {{"nxPLST",
             [=] {
                 ur::Reference<nxPLST::Item> tree;
                 auto const bytes = static_cast<unsigned>(text->size());
                 return seconds([&] { keep(nxPLST::convertFromJSON(tree, text->data(), bytes)); });
             }},
            {rapidName,
             [=] {
                 rapidjson::Document tree;
                 return seconds([&] {
                     tree.Parse<rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag>(
                         text->data(), text->size());
                 });
             }},
            {boostName,
             [=] {
                 boost::json::value tree;
                 return seconds([&] { tree = boost::json::parse(*text, {}, anyDepth); });
             }},
            {nlohmannName, [=] {
                 nlohmann::json tree;
                 return seconds([&] { tree = nlohmann::json::parse(*text); });
             }}};
}

/// Boost.JSON has no indented form, so it writes the same values in fewer characters.
Sides writers(Document const& document) {
    ur::Reference<nxPLST::Item> ours;
    static_cast<void>(nxPLST::convertFromJSON(ours, document.text.data(), static_cast<unsigned>(document.text.size())));
    auto const rapid = std::make_shared<rapidjson::Document>();
    rapid->Parse<rapidjson::kParseFullPrecisionFlag>(document.text.data(), document.text.size());
    auto const boosts = std::make_shared<boost::json::value>(boost::json::parse(document.text, {}, anyDepth));
    auto const nlohmanns = std::make_shared<nlohmann::json>(nlohmann::json::parse(document.text));
    return {{"nxPLST",
             [=] {
                 urString::CString out;
                 return seconds([&] { keep(nxPLST::convertToJSON(out, ours)); });
             }},
            {rapidName,
             [=] {
                 rapidjson::StringBuffer out;
                 return seconds([&] {
                     rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(out);
                     rapid->Accept(writer);
                 });
             }},
            {boostName,
             [=] {
                 std::string out;
                 return seconds([&] { out = boost::json::serialize(*boosts); });
             }},
            {nlohmannName, [=] {
                 std::string out;
                 return seconds([&] { out = nlohmanns->dump(4); });
             }}};
}

/// Reads a text and drops what it held.
template <class Read>
Side loading(char const* name, Read read) {
    return {name, [=] { return seconds(read); }};
}

Sides loaders(Text const& text) {
    return {loading("nxPLST",
                    [=] {
                        ur::Reference<nxPLST::Item> tree;
                        keep(nxPLST::convertFromJSON(tree, *text));
                    }),
            loading(rapidName,
                    [=] {
                        rapidjson::Document tree;
                        tree.Parse<rapidjson::kParseFullPrecisionFlag | rapidjson::kParseValidateEncodingFlag>(
                            text->data(), text->size());
                        keep(tree);
                    }),
            loading(boostName, [=] { keep(boost::json::parse(*text, {}, anyDepth)); })};
}

/// Beside a tree that frees everything at once.
Sides poolLoaders(Text const& text) {
    return {loaders(text).front(), loading("boost.json in one block", [=] {
                boost::json::monotonic_resource block;
                keep(boost::json::parse(*text, &block, anyDepth));
            })};
}

Sides copies(Text const& text) {
    ur::Reference<nxPLST::Item> ours;
    static_cast<void>(nxPLST::convertFromJSON(ours, *text));
    auto const rapid = std::make_shared<rapidjson::Document>();
    rapid->Parse<rapidjson::kParseFullPrecisionFlag>(text->data(), text->size());
    auto const boosts = std::make_shared<boost::json::value>(boost::json::parse(*text, {}, anyDepth));
    return {loading("nxPLST", [=] { keep(ours->clone()); }),
            loading(rapidName,
                    [=] {
                        rapidjson::Document copy;
                        copy.CopyFrom(*rapid, copy.GetAllocator());
                        keep(copy);
                    }),
            loading(boostName, [=] { keep(boost::json::value(*boosts)); })};
}

/// Files as other people have them.
void addFileRows(Suite& suite) {
    for (Document const& document : documentsIn(suite.folder())) {
        Text const text = std::make_shared<std::string>(document.text);
        suite.compare("file-load/" + document.name, 0.65, [&] { return loaders(text); });
        suite.compare("file-load-in-block/" + document.name, 1.0, [&] { return poolLoaders(text); });
        suite.compare("file-write/" + document.name, 0.60, [&] { return writers(document); });
        suite.compare("file-copy/" + document.name, 1.0, [&] { return copies(text); });
    }
}

}  // namespace

void addJsonRows(Suite& suite) {
    addFileRows(suite);
    for (Document const& document : documents(suite.quick())) {
        suite.compare("json-read/" + document.name, 0.90, [&] { return readers(document); });
    }
    for (Document const& document : documents(suite.quick())) {
        if (document.name == "nested") continue;  // deeper than the limit of strict JSON
        suite.compare("json-write/" + document.name, document.name == "outlines" ? 0.80 : 0.95,
                      [&] { return writers(document); });
    }
}

}  // namespace bench
