// The installed yajl used in the plainest way, to compare the JSON bridge with; and trees and texts to compare on.
#pragma once

#include <yajl/yajl_gen.h>
#include <yajl/yajl_parse.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "plst/casts.h"

namespace nxPLST::test {

using ur::make;
using ur::Reference;

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

// Comparing ----------------------------------------------------------------------------------------------------

/// Equal to the last bit.
inline bool same(Item const* a, Item const* b) {
    if (!a || !b || a->type() != b->type()) return a == b;
    switch (a->type()) {
        case BoolType: return static_cast<Bool const*>(a)->value() == static_cast<Bool const*>(b)->value();
        case DoubleType: {
            double const values[] = {static_cast<Double const*>(a)->value(), static_cast<Double const*>(b)->value()};
            return std::memcmp(&values[0], &values[1], sizeof(double)) == 0;
        }
        case StringType: return static_cast<String const*>(a)->value() == static_cast<String const*>(b)->value();
        case ArrayType: {
            auto const& left = static_cast<Array const*>(a)->array();
            auto const& right = static_cast<Array const*>(b)->array();
            return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                              [](auto const& x, auto const& y) { return same(x.get(), y.get()); });
        }
        case DictionaryType: {
            auto const& left = static_cast<Dictionary const*>(a)->dictionary();
            auto const& right = static_cast<Dictionary const*>(b)->dictionary();
            return std::equal(left.begin(), left.end(), right.begin(), right.end(), [](auto const& x, auto const& y) {
                return x.first == y.first && same(x.second.get(), y.second.get());
            });
        }
    }
    return false;
}

// Making -------------------------------------------------------------------------------------------------------

/// An item of a kind that nobody knows.
class Stranger final : public Item {
public:
    Stranger() : Item(static_cast<Type>(7)) {}

private:
    [[nodiscard]] Reference<Item> onClone() const override { return make<Stranger>(); }
};

class RandomTrees {
public:
    explicit RandomTrees(unsigned seed) : random_(seed) {}

    /// One in `oddity` items is a null, a NaN, an infinity or a stranger; none when it is 0.
    Reference<Item> tree(int depth, unsigned oddity) {
        if (oddity > 0 && below(oddity) == 0) return odd();
        switch (below(depth > 0 ? 6 : 4)) {
            case 0: return make<Bool>(below(2) == 0);
            case 1: return make<String>(text());
            case 2:
            case 3: return make<Double>(number());
            case 4: {
                auto array = make<Array>();
                for (unsigned n = below(5); n > 0; --n) array->insert(tree(depth - 1, oddity));
                return array;
            }
            default: {
                auto dictionary = make<Dictionary>();
                for (unsigned n = below(14); n > 0; --n) dictionary->insert(text(), tree(depth - 1, oddity));
                return dictionary;
            }
        }
    }

    /// Of any length and bytes, mostly short and plain.
    urString::CString text() {
        std::string text;
        for (unsigned n = below(4) == 0 ? below(70) : below(18); n > 0; --n) {
            text += static_cast<char>(below(20) == 0 ? below(256) : 'a' + below(26));
        }
        return urString::CString(text);
    }

    double number() {
        switch (below(5)) {
            case 0: return static_cast<int>(random_()) >> below(31);
            case 1: return std::ldexp(static_cast<double>(random_() >> 11), -static_cast<int>(below(120)));
            case 2:
                return -std::ldexp(static_cast<double>(random_() >> (11 + below(50))), -static_cast<int>(below(60)));
            case 3: return below(100000) / std::pow(10, below(12));
            default: {
                double value = 0;
                std::uint64_t const word = random_();
                std::memcpy(&value, &word, sizeof value);
                return std::isfinite(value) ? value : -0.0;
            }
        }
    }

    unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }

private:
    Reference<Item> odd() {
        switch (below(4)) {
            case 0: return nullptr;
            case 1: return make<Double>(std::nan(""));
            case 2: return make<Double>(-HUGE_VAL);
            default: return make<Stranger>();
        }
    }

    std::mt19937_64 random_;
};

/// Texts that between them touch everything that a reader of JSON has to decide.
inline std::vector<std::string> const& jsonTexts() {
    static std::vector<std::string> const texts = {
        R"({"a":1,"b":[1,2.5,-3e-4,true,false,null,"x"],"c":{"d":{}},"e":[]})",
        R"( [ 1 , [ ] , { "k" : [ { } ] } , "\"\\\/\b\f\n\r\t" ] )",
        R"(["\u00e9\u20ac\ud83d\ude00\u0000","\ud800","\ud800\u0041","\udc00x","é€😀"])",
        "/* a */[1,// b\n2/**/]/* c */ // d\n",
        "[0,-0,-0.0,0.0,1E5,1e+5,12345678901234567890.0,9007199254740993,9223372036854775807]",
        "[9223372036854775808]",
        "[-9223372036854775808]",
        "[1e308,1e309]",
        "[1e-99999999999999999999,0e99999999999999999999]",
        "[1e-400,4.9e-324,123456789012345678901234567890e-20,0.1000000000000000055511151231257827]",
        "{\"a\":1,\"a\":2,\"aaaaaaaaaaaaaaaaaaaaaaaa\":[[[[1]]]],\"\":null,\"a\":null}",
        "\xEF\xBB\xBF[1]",
        "[\"\xC3\xA9\xC0\x80\xED\xA0\x80\xF7\xBF\xBF\xBF\"]",
        "[\"\x80\"]",
        "\v\f[1]\t\r\n",
        "12",
        "-1.5e3",
        "null",
        "\"text of more than sixteen bytes, \\u0041nd an escape\"",
        "[1] \"never ended",
        "[1] x",
        "",
    };
    return texts;
}

/// One of the texts, most often one of the first, with some bytes changed, dropped, doubled or brought in.
inline std::string mutated(RandomTrees& random) {
    auto const any = [&]() -> std::string const& {
        return jsonTexts()[random.below(random.below(2) ? 2 : static_cast<unsigned>(jsonTexts().size()))];
    };
    std::string text = any();
    for (unsigned changes = random.below(3) + 1; changes > 0; --changes) {
        static constexpr char bytes[] = "[]{},:\"\\/*0123456789+-.eEtfnul\n \x01\x80\xC3\xFF";
        std::size_t const at = random.below(static_cast<unsigned>(text.size()) + 1);
        std::size_t const count = random.below(5);
        switch (random.below(5)) {
            case 0: text.insert(at, 1, bytes[random.below(sizeof bytes)]); break;
            case 1: text.erase(at, count); break;
            case 2: text.insert(at, text.substr(random.below(static_cast<unsigned>(at) + 1), count)); break;
            case 3: text.insert(at, any().substr(0, random.below(12))); break;
            default: {
                std::string const& other = any();
                text.replace(at, std::string::npos, other, std::min(at, other.size() / 2));
            }
        }
    }
    return text;
}

}  // namespace nxPLST::test
