// Reading JSON: what it means, what is refused, and yajl's word on everything.
#include <fstream>

#include "foundation/ur/tests/smallStack.h"
#include "plst/JsonTape.h"
#include "plst/impl/FastJsonReader.h"
#include "plst/impl/YajlReader.h"
#include "plst/json.h"
#include "plst/tests/plainYajl.h"

namespace nxPLST {
namespace {

using namespace test;

/// The tree of a text in a compact notation of its own: T, F, numbers as "%g", texts in quotes, [..], {key:..}.
std::string shape(Item const* item) {
    if (!item) return "-";
    std::string text;
    switch (item->type()) {
        case BoolType: return static_cast<Bool const*>(item)->value() ? "T" : "F";
        case DoubleType: return urString::CString::format("%.17g", static_cast<Double const*>(item)->value()).c_str();
        case StringType: return '\'' + std::string(static_cast<String const*>(item)->value()) + '\'';
        case ArrayType:
            for (auto const& element : static_cast<Array const*>(item)->array()) text += shape(element.get()) + ' ';
            return '[' + text + ']';
        case DictionaryType:
            for (auto const& [key, value] : static_cast<Dictionary const*>(item)->dictionary()) {
                text += std::string(key) + ':' + shape(value.get()) + ' ';
            }
            return '{' + text + '}';
    }
    return "?";
}

std::string read(std::string const& text) {
    Reference<Item> const former = make<Bool>();
    Reference<Item> item = former;
    if (convertFromJSON(item, urString::CString(text))) return shape(item.get());
    EXPECT_EQ(item, former) << text;
    return "refused";
}

TEST(ReadJson, GivesTheItemsOfTheText) {
    struct Case {
        std::string text;
        char const* result;
    };
    Case const cases[] = {
        {R"({"b":[1,-2.5e3,true],"a":"x"})", "{a:'x' b:[1 -2500 T ] }"},
        {"[1,null,2]", "[1 2 ]"},
        {R"({"a":null,"b":{"c":null}})", "{b:{} }"},
        {R"({"a":1,"a":2,"a":null})", "{a:2 }"},
        {"null", "-"},
        {"[/* c */true]", "[T ]"},
        {"1 // trailing", "1"},
        {"-0", "0"},
        {"-0.0", "-0"},
        {"[\"\\ud83d\\ude00\\u00e9\\n\"]", "['😀é\n' ]"},
        {"9223372036854775807", "9.2233720368547758e+18"},
        {"9223372036854775808", "refused"},
        {"[-9223372036854775808]", "refused"},
        {"[9223372036854775808.0]", "[9.2233720368547758e+18 ]"},
        {"[1e309]", "refused"},
        {"[-1e-400]", "[-0 ]"},
        {"[1][2]", "refused"},
        {"", "refused"},
        {" ", "refused"},
    };
    for (Case const& one : cases) EXPECT_EQ(read(one.text), one.result) << one.text;
}

TEST(ReadJson, EndsWithItsLengthAndKeepsNulBytes) {
    Reference<Item> item;
    EXPECT_TRUE(convertFromJSON(item, "[1][2]", 3));
    EXPECT_EQ(shape(item.get()), "[1 ]");
    EXPECT_FALSE(convertFromJSON(item, "[1]", 2));
    EXPECT_FALSE(convertFromJSON(item, nullptr, 0));
    EXPECT_FALSE(convertFromJSON(item, urString::CString("[1]\0", 4)));
    EXPECT_TRUE(convertFromJSON(item, R"(["a\u0000b"])"));
    EXPECT_EQ(asString(asArray(item)->objectAt(0))->value().size(), 3U);
}

TEST(ReadJson, MayReplaceTheTreeThatHoldsItsText) {
    Reference<Item> item = make<String>("[\"a text that is too long to lie in its object\"]");
    EXPECT_TRUE(convertFromJSON(item, asString(item)->value()));
    EXPECT_EQ(shape(item.get()), "['a text that is too long to lie in its object' ]");
}

TEST(ReadJson, KeepsTheLastOfManyEqualKeys) {
    std::string text = "{";
    for (int i = 0; i < 5000; ++i) text += "\"key " + std::to_string(i * 7 % 50) + "\":" + std::to_string(i) + ",";
    Reference<Item> item;
    ASSERT_TRUE(convertFromJSON(item, urString::CString(text + "\"\":0}")));
    auto const dictionary = asDictionary(item);
    ASSERT_EQ(dictionary->size(), 51);
    for (int i = 4950; i < 5000; ++i) {
        auto const value = asDouble(dictionary->get(urString::CString("key " + std::to_string(i * 7 % 50))));
        EXPECT_EQ(value->value(), i);
    }
}

/// The item of the tape's next value, without nulls as in trees.
Reference<Item> takeItem(JsonTape const& tape, JsonTape::Entry const*& next) {
    JsonTape::Entry const& entry = *next++;
    switch (entry.kind) {
        case JsonTape::Kind::null: return nullptr;
        case JsonTape::Kind::boolean: return make<Bool>(entry.isTrue);
        case JsonTape::Kind::number: return make<Double>(entry.number);
        case JsonTape::Kind::text: return make<String>(urString::CString(tape.textOf(entry)));
        case JsonTape::Kind::array: {
            auto array = make<Array>();
            for (unsigned i = 0; i < entry.size; ++i) {
                if (auto element = takeItem(tape, next)) array->insert(element);
            }
            return array;
        }
        case JsonTape::Kind::dictionary: break;
    }
    auto dictionary = make<Dictionary>();
    for (unsigned i = 0; i < entry.size; ++i) {
        urString::CString const key(tape.textOf(*next++));
        if (auto value = takeItem(tape, next)) dictionary->insert(key, value);
    }
    return dictionary;
}

void agreeOnTape(std::string const& text, bool accepted, Item const* plain) {
    JsonTape tape;
    EXPECT_EQ(tape.read(text), accepted) << text;
    EXPECT_EQ(tape.entries().empty(), !accepted) << text;
    if (!accepted) return;
    JsonTape::Entry const* next = tape.entries().data();
    EXPECT_TRUE(same(takeItem(tape, next).get(), plain)) << text;
    EXPECT_EQ(next - tape.entries().data(), static_cast<std::ptrdiff_t>(tape.entries().size())) << text;
}

/// Both readers and the tape beside yajl used plainly; whether the fast reader took the text.
bool agree(std::string const& text) {
    Reference<Item> plain;
    Reference<Item> careful;
    bool const accepted = readPlainly(plain, text);
    EXPECT_EQ(impl::readWithYajl(careful, text.data(), text.size()), accepted) << text;
    EXPECT_TRUE(same(careful.get(), plain.get())) << text;
    agreeOnTape(text, accepted, plain.get());
    // In a block of its own size, so that reading beyond it is seen.
    std::vector<char> const block(text.begin(), text.end());
    Reference<Item> const fast = impl::FastJsonReader({block.data(), block.size()}).read();
    if (!fast) return false;
    EXPECT_TRUE(accepted && same(fast.get(), plain.get())) << text;
    return true;
}

TEST(ReadJson, IsYajlsReadingOfAnyText) {
    for (std::string const& text : jsonTexts()) {
        agree(text);
        for (std::size_t size = 0; size < text.size(); ++size) agree(text.substr(0, size));
    }
    unsigned const seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomTrees random(seed);
    int fast = 0;
    constexpr int texts = 300000;
    for (int i = 0; i < texts && !testing::Test::HasFailure(); ++i) fast += agree(mutated(random));
    EXPECT_GT(fast, texts / 50);
}

TEST(ReadJson, TakesOrdinaryTextsTheFastWay) {
    RandomTrees random(1);
    for (int i = 0; i < 1000; ++i) {
        std::string text;
        ASSERT_TRUE(writePlainly(text, arrayOf({random.tree(5, 0)}).get()));
        Reference<Item> plain;
        ASSERT_EQ(agree(text), readPlainly(plain, text)) << text;
    }
    for (char const* name : {"iso_3166-2", "iso_639-3", "iso_4217"}) {
        std::ifstream in(std::string("/usr/share/iso-codes/json/") + name + ".json", std::ios::binary);
        std::string const text{std::istreambuf_iterator<char>(in), {}};
        EXPECT_EQ(agree(text), !text.empty());
    }
}

TEST(ReadJson, OrdersKeysWhicheverCameBefore) {
    unsigned const seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomTrees random(seed);
    std::string text = "[";
    for (int i = 0; i < 20000; ++i) {
        unsigned const members = random.below(random.below(4) == 0 ? 30 : 5);
        unsigned const first = random.below(50);
        unsigned const step = random.below(8) == 0 ? random.below(50) : 7;  // else all different
        text += i > 0 ? ",{" : "{";
        for (unsigned m = 0; m < members; ++m) {
            text += (m > 0 ? ",\"k" : "\"k") + std::to_string((first + m * step) % 50) + "\":" + std::to_string(m);
        }
        text += '}';
    }
    EXPECT_TRUE(agree(text + "]"));
}

TEST(ReadJson, OfAnyDepthNeedsLittleStack) {
    constexpr unsigned depth = ::test::manyLevels;
    std::string arrays = std::string(depth, '[') + std::string(depth, ']');
    std::string objects;
    for (unsigned i = 0; i < depth; ++i) objects += "{\"k\":";
    std::string const open = objects;
    objects += "1" + std::string(depth, '}');
    ::test::onSmallStack([&] {
        for (std::string const& text : {arrays, objects, "/**/" + arrays, "/**/" + objects}) {
            Reference<Item> item;
            EXPECT_TRUE(convertFromJSON(item, urString::CString(text)));
            urString::CString refused;
            EXPECT_FALSE(convertToJSON(refused, item));
        }
        for (std::string const& text : {arrays.substr(0, depth), arrays + "]", open, open + "]"}) {
            Reference<Item> item;
            EXPECT_FALSE(convertFromJSON(item, urString::CString(text)));
        }
    });
}

}  // namespace
}  // namespace nxPLST
