// Trees and JSON texts for tests: fixed, random, compared to the bit.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "foundation/io/ioReadContext.h"
#include "plst/casts.h"

namespace nxPLST::test {

using ur::make;
using ur::Reference;

inline int number(ioStatus status) { return static_cast<int>(status); }

/// Equal to the last bit.
inline bool same(Item const* a, Item const* b) {
    if (!a || !b || a->type() != b->type()) return a == b;
    switch (a->type()) {
        case BoolType: return static_cast<Bool const*>(a)->value() == static_cast<Bool const*>(b)->value();
        case DoubleType: {
            double const values[] = {static_cast<Double const*>(a)->value(), static_cast<Double const*>(b)->value()};
            return std::bit_cast<std::uint64_t>(values[0]) == std::bit_cast<std::uint64_t>(values[1]);
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

inline bool same(Reference<Item> const& a, Reference<Item> const& b) { return same(a.get(), b.get()); }

inline Reference<Array> arrayOf(std::vector<Reference<Item>> elements) {
    auto array = make<Array>();
    array->array() = std::move(elements);
    return array;
}

inline Reference<Dictionary> dictionaryOf(std::vector<std::pair<char const*, Reference<Item>>> const& entries) {
    auto dictionary = make<Dictionary>();
    for (auto const& [key, value] : entries) dictionary->insert(key, value);
    return dictionary;
}

/// An item of an unknown kind.
class Stranger final : public Item {
public:
    Stranger() : Item(static_cast<Type>(7)) {}

private:
    [[nodiscard]] Reference<Item> onClone() const override { return make<Stranger>(); }
};

/// Each array holds the next one twice.
inline Reference<Item> doubled(int levels, Reference<Item> innermost) {
    for (int i = 0; i < levels; ++i) innermost = arrayOf({innermost, innermost});
    return innermost;
}

class RandomTrees {
public:
    explicit RandomTrees(unsigned seed) : random_(seed) {}

    /// One in `oddity` items is a null, a NaN, an infinity or a stranger; none when `oddity` is 0.
    Reference<Item> tree(int depth, unsigned oddity) {
        return oddity > 0 && below(oddity) == 0 ? odd() : item(depth, [&] { return tree(depth - 1, oddity); });
    }

    /// Some items are null, and some occur several times.
    Reference<Item> sharingTree(int depth) {
        if (below(7) == 0) return made_.empty() ? nullptr : made_[below(static_cast<unsigned>(made_.size()))];
        made_.push_back(item(depth, [&] { return sharingTree(depth - 1); }));
        return made_.back();
    }

    /// A container whose children `child` makes; there are none below depth 1.
    template <class Child>
    Reference<Item> item(int depth, Child child) {
        switch (below(depth > 0 ? 6 : 4)) {
            case 0: return make<Bool>(below(2) == 0);
            case 1: return make<String>(text());
            case 2:
            case 3: return make<Double>(number());
            case 4: {
                auto array = make<Array>();
                for (unsigned n = below(5); n > 0; --n) array->insert(child());
                return array;
            }
            default: {
                auto dictionary = make<Dictionary>();
                for (unsigned n = below(14); n > 0; --n) dictionary->insert(text(), child());
                return dictionary;
            }
        }
    }

    /// Any length and any bytes except NUL, mostly short and plain.
    urString::CString text() {
        std::string text;
        for (unsigned n = below(4) == 0 ? below(70) : below(18); n > 0; --n) {
            text += static_cast<char>(below(20) == 0 ? 1 + below(255) : 'a' + below(26));
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
    std::vector<Reference<Item>> made_;
};

/// Uses new seeds in each run; failures report their seed.
struct NewTrees : RandomTrees {
    explicit NewTrees(unsigned seed = std::random_device()())
        : RandomTrees(seed), trace(__FILE__, __LINE__, "seed " + std::to_string(seed)) {}
    testing::ScopedTrace const trace;
};

/// Texts that together cover every decision of a JSON reader.
inline std::vector<std::string> const& jsonTexts() {
    static std::vector<std::string> const texts = {
        R"({"a":1,"b":[1,2.5,-3e-4,true,false,null,"x"],"c":{"d":{}},"e":[]})",
        R"( [ 1 , [ ] , { "k" : [ { } ] } , "\"\\\/\b\f\n\r\t\u0080" ] )",
        R"(["\u00e9\u20ac\ud83d\ude00\u0000","\ud800","\ud800\u0041","\udc00x","é€😀"])",
        "/* a */[1,// b\n2/**/]/* c */ // d\n",
        "[0,-0,-0.0,0.0,1E5,1e+5,12345678901234567890.0,9007199254740993,9223372036854775807]",
        "[9223372036854775808]",
        "[-9223372036854775808]",
        "[1e308,1e309]",
        "[1e-99999999999999999999,0e99999999999999999999]",
        "[1e-400,-1e-400,4.9e-324,123456789012345678901234567890e-20,0.1000000000000000055511151231257827]",
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

/// One of the texts, mostly one of the first, with some bytes changed, dropped, doubled or inserted.
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
