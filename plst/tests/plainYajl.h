// Plain use of the installed yajl, for comparison with the JSON functions.
#pragma once

#include <yajl/yajl_gen.h>
#include <yajl/yajl_parse.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "plst/casts.h"
#include "plst/tests/trees.h"

namespace nxPLST::test {

// Reading ------------------------------------------------------------------------------------------------------

struct PlainFrame {
    Reference<Item> value;
    urString::CString key;
};

struct PlainReader {
    std::vector<PlainFrame> frames{1};

    static int add(void* self, Reference<Item> item) {
        PlainFrame& top = static_cast<PlainReader*>(self)->frames.back();
        if (auto array = asArray(top.value)) {
            array->insert(item);
        } else if (auto dictionary = asDictionary(top.value)) {
            dictionary->insert(top.key, item);
        } else {
            top.value = item;
        }
        return 1;
    }
    static int open(void* self, Reference<Item> container) {
        static_cast<PlainReader*>(self)->frames.push_back({container, {}});
        return 1;
    }
    static int close(void* self) {
        auto& frames = static_cast<PlainReader*>(self)->frames;
        Reference<Item> const container = frames.back().value;
        frames.pop_back();
        return add(self, container);
    }
};

inline urString::CString bytes(unsigned char const* text, std::size_t size) {
    return {reinterpret_cast<char const*>(text), size};
}

inline bool readPlainly(Reference<Item>& out, std::string const& text) {
    static yajl_callbacks const callbacks = {
        [](void*) { return 1; },
        [](void* to, int value) { return PlainReader::add(to, make<Bool>(value != 0)); },
        [](void* to, long long value) { return PlainReader::add(to, make<Double>(static_cast<double>(value))); },
        [](void* to, double value) { return PlainReader::add(to, make<Double>(value)); },
        nullptr,
        [](void* to, unsigned char const* s, std::size_t n) { return PlainReader::add(to, make<String>(bytes(s, n))); },
        [](void* to) { return PlainReader::open(to, make<Dictionary>()); },
        [](void* to, unsigned char const* s, std::size_t n) {
            static_cast<PlainReader*>(to)->frames.back().key = bytes(s, n);
            return 1;
        },
        PlainReader::close,
        [](void* to) { return PlainReader::open(to, make<Array>()); },
        PlainReader::close};
    PlainReader reader;
    yajl_handle const parser = yajl_alloc(&callbacks, nullptr, &reader);
    yajl_config(parser, yajl_allow_comments, 1);
    bool const ok = yajl_parse(parser, reinterpret_cast<unsigned char const*>(text.data()), text.size()) == 0 &&
                    yajl_complete_parse(parser) == 0;
    yajl_free(parser);
    if (ok) out = reader.frames.front().value;
    return ok;
}

// Writing ------------------------------------------------------------------------------------------------------

inline int generate(yajl_gen generator, Item const* item) {
    auto const put = [&](urString::CString const& text) {
        return yajl_gen_string(generator, reinterpret_cast<unsigned char const*>(text.data()), text.size());
    };
    if (!item) return yajl_gen_null(generator);
    int status = 0;
    switch (item->type()) {
        case BoolType: return yajl_gen_bool(generator, static_cast<Bool const*>(item)->value());
        case DoubleType: {
            double const value = static_cast<Double const*>(item)->value();
            if (!std::isfinite(value)) return yajl_gen_double(generator, value);
            char text[400];
            return yajl_gen_number(generator, text, std::snprintf(text, sizeof text, "%.20g", value));
        }
        case StringType: return put(static_cast<String const*>(item)->value());
        case ArrayType:
            status = yajl_gen_array_open(generator);
            for (auto const& element : static_cast<Array const*>(item)->array()) {
                if (status == 0) status = generate(generator, element.get());
            }
            return status == 0 ? static_cast<int>(yajl_gen_array_close(generator)) : status;
        case DictionaryType:
            status = yajl_gen_map_open(generator);
            for (auto const& [key, value] : static_cast<Dictionary const*>(item)->dictionary()) {
                if (status == 0) status = put(key);
                if (status == 0) status = generate(generator, value.get());
            }
            return status == 0 ? static_cast<int>(yajl_gen_map_close(generator)) : status;
    }
    return 0;
}

inline bool writePlainly(std::string& text, Item const* item) {
    yajl_gen const generator = yajl_gen_alloc(nullptr);
    yajl_print_t const print = [](void* to, char const* s, std::size_t n) {
        static_cast<std::string*>(to)->append(s, n);
    };
    yajl_gen_config(generator, yajl_gen_print_callback, print, &text);
    yajl_gen_config(generator, yajl_gen_beautify, 1);
    int const status = generate(generator, item);
    yajl_gen_free(generator);
    return status == 0;
}

}  // namespace nxPLST::test
