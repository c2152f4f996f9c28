// How the other libraries build the record tree, and their names.
#pragma once

#include <rapidjson/document.h>

#include <boost/json.hpp>
#include <nlohmann/json.hpp>

namespace bench {

inline constexpr char const* rapidName = "rapidjson";
inline constexpr char const* boostName = "boost.json";
inline constexpr char const* nlohmannName = "nlohmann";

inline void buildRecords(rapidjson::Document& document, int records) {
    auto& pool = document.GetAllocator();
    document.SetArray().Reserve(static_cast<rapidjson::SizeType>(records), pool);
    for (int i = 0; i < records; ++i) {
        rapidjson::Value place(rapidjson::kArrayType);
        for (int k = 0; k < 3; ++k) place.PushBack(i + 0.25 * k, pool);
        rapidjson::Value record(rapidjson::kObjectType);
        auto const owned = [&](char const* text) { return rapidjson::Value(text, pool); };
        record.AddMember(owned("id"), rapidjson::Value(static_cast<double>(i)), pool);
        record.AddMember(owned("name"), owned("item number"), pool);
        record.AddMember(owned("place"), place, pool);
        record.AddMember(owned("visible"), rapidjson::Value(i % 2 == 0), pool);
        document.PushBack(record, pool);
    }
}

inline boost::json::value boostRecords(int records) {
    boost::json::array array;
    array.reserve(static_cast<std::size_t>(records));
    for (int i = 0; i < records; ++i) {
        array.push_back({{"id", static_cast<double>(i)},
                         {"name", "item number"},
                         {"place", {i + 0.0, i + 0.25, i + 0.5}},
                         {"visible", i % 2 == 0}});
    }
    return array;
}

inline nlohmann::json nlohmannRecords(int records) {
    nlohmann::json array = nlohmann::json::array();
    for (int i = 0; i < records; ++i) {
        array.push_back({{"id", static_cast<double>(i)},
                         {"name", "item number"},
                         {"place", nlohmann::json::array({i + 0.0, i + 0.25, i + 0.5})},
                         {"visible", i % 2 == 0}});
    }
    return array;
}

}  // namespace bench
