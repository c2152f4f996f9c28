// Real and generated inputs.
#include "bench/inputs.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>

#include "plst/Array.h"
#include "plst/Bool.h"
#include "plst/Dictionary.h"
#include "plst/Double.h"
#include "plst/String.h"

namespace bench {
namespace {

std::string file(char const* path) {
    std::ifstream in(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(in), {}};
    if (text.empty()) std::fprintf(stderr, "nxbench: %s is missing; using an empty array\n", path);
    return text.empty() ? "[]" : text;
}

std::string outlines(int lots) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> offset(-0.001, 0.001);
    std::string text = R"({"type": "FeatureCollection", "features": [)";
    char number[80];
    for (int lot = 0; lot < lots; ++lot) {
        text += lot ? "," : "";
        text += R"({"type": "Feature", "geometry": {"type": "Polygon", "coordinates": [[)";
        for (int corner = 0; corner < 12; ++corner) {
            std::snprintf(number, sizeof number, "%s[%.15g, %.15g, %.17g]", corner ? "," : "", -122.42 + offset(random),
                          37.78 + offset(random), offset(random));
            text += number;
        }
        text += "]]}}";
    }
    return text + "]}";
}

std::string smallObjects(int count) {
    std::string text = "[";
    for (int i = 0; i < count; ++i) {
        text += i ? "," : "";
        text += R"({"id":)" + std::to_string(i) + R"(,"on":true,"name":"n)" + std::to_string(i % 977) +
                R"(","at":{"x":)" + std::to_string(i % 640) + R"(,"y":)" + std::to_string(i % 480) + "}}";
    }
    return text + "]";
}

std::string nested(int towers, int depth) {
    std::string text = "[";
    for (int tower = 0; tower < towers; ++tower) {
        text += tower ? "," : "";
        for (int level = 0; level < depth; ++level) text += level % 2 ? "[1," : R"({"level":)";
        text += "true";
        for (int level = depth; level-- > 0;) text += level % 2 ? "]" : "}";
    }
    return text + "]";
}

}  // namespace

std::vector<Document> const& documents(bool quick) {
    int const scale = quick ? 1 : 10;
    static std::vector<Document> const all = {{"languages", file("/usr/share/iso-codes/json/iso_639-3.json")},
                                              {"outlines", outlines(1000 * scale)},
                                              {"records", smallObjects(5000 * scale)},
                                              {"nested", nested(40 * scale, 500)}};
    return all;
}

std::vector<Document> documentsIn(std::string const& folder) {
    std::vector<Document> all;
    if (folder.empty()) return all;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".json")
            all.push_back({entry.path().stem().string(), file(entry.path().c_str())});
    }
    std::ranges::sort(all, std::less(), &Document::name);
    return all;
}

ur::Reference<nxPLST::Item> recordTree(int records) {
    using namespace nxPLST;
    auto array = ur::make<Array>();
    array->array().reserve(records);
    for (int i = 0; i < records; ++i) {
        auto place = ur::make<Array>();
        place->array().reserve(3);
        for (int k = 0; k < 3; ++k) place->insert(ur::make<Double>(i + 0.25 * k));
        auto record = ur::make<Dictionary>();
        record->insert("id", ur::make<Double>(i));
        record->insert("name", ur::make<String>("item number"));
        record->insert("place", place);
        record->insert("visible", ur::make<Bool>(i % 2 == 0));
        array->insert(record);
    }
    return array;
}

}  // namespace bench
