// Tests reading JSON: results, refusals, and agreement with yajl.
#include <fstream>

#include "foundation/ur/tests/smallStack.h"
#include "plst/JsonTape.h"
#include "plst/impl/json/readJson.h"
#include "plst/json.h"
#include "plst/tests/plainYajl.h"

namespace nxPLST {
namespace {

using namespace test;

TEST(ReadJson, DropsNullsTakesTheLastOfEqualKeysAndRefusesWhatNoItemHolds) {
    auto const two = make<Double>(2);
    std::pair<char const*, Reference<Item>> const cases[] = {
        {"[1,null,2]", arrayOf({make<Double>(1), two})},
        {R"({"a":null,"b":{"c":null}})", dictionaryOf({{"b", make<Dictionary>()}})},
        {R"({"a":1,"a":2,"a":null})", dictionaryOf({{"a", two}})},
        {"null", nullptr},
        {"2 // trailing", two},
        {"[9223372036854775808.0]", arrayOf({make<Double>(0x1p63)})},
    };
    Reference<Item> item;
    for (auto const& [text, expected] : cases) {
        item = make<Bool>();
        EXPECT_TRUE(convertFromJSON(item, text)) << text;
        EXPECT_TRUE(same(item, expected)) << text;
    }
    std::string const small800 = "[0." + std::string(800, '0') + "1e100]";
    EXPECT_TRUE(convertFromJSON(item, small800));
    EXPECT_TRUE(same(item, arrayOf({make<Double>(0)})));
    std::string const large400 = "[1" + std::string(400, '0') + ".0]";
    for (char const* text : {"9223372036854775808", "[1e309]", large400.c_str(), "[1][2]", "", " "}) {
        item = two;
        EXPECT_FALSE(convertFromJSON(item, text)) << text;
        EXPECT_EQ(item, two);
    }
}

TEST(ReadJson, EndsWithItsLengthAndKeepsNulBytes) {
    Reference<Item> item;
    EXPECT_TRUE(convertFromJSON(item, "[1][2]", 3));
    EXPECT_TRUE(same(item, arrayOf({make<Double>(1)})));
    EXPECT_FALSE(convertFromJSON(item, "[1]", 2));
    EXPECT_FALSE(convertFromJSON(item, nullptr, 0));
    EXPECT_FALSE(convertFromJSON(item, urString::CString("[1]\0", 4)));
    EXPECT_TRUE(convertFromJSON(item, R"(["a\u0000b"])"));
    EXPECT_TRUE(same(item, arrayOf({make<String>(urString::CString("a\0b", 3))})));
}

TEST(ReadJson, MayReplaceTheTreeThatHoldsItsText) {
    char const text[] = "a text that is too long to lie in its object";
    Reference<Item> item = make<String>(urString::CString::format("[\"%s\"]", text));
    EXPECT_TRUE(convertFromJSON(item, asString(item)->value()));
    EXPECT_TRUE(same(item, arrayOf({make<String>(text)})));
}

/// The item of the tape's next value, without nulls, as in trees.
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

/// Compares both readers and the tape with plain yajl; returns whether the fast reader accepted the text.
bool agree(std::string const& text) {
    Reference<Item> plain;
    Reference<Item> careful;
    bool const accepted = readPlainly(plain, text);
    EXPECT_EQ(impl::readWithYajl(careful, text.data(), text.size()), accepted) << text;
    EXPECT_TRUE(same(careful.get(), plain.get())) << text;
    agreeOnTape(text, accepted, plain.get());
    // In a block of exactly its size, so that a read beyond it is detected.
    std::vector<char> const block(text.begin(), text.end());
    Reference<Item> const fast = impl::FastJsonReader({block.data(), block.size()}).read();
    if (!fast) return false;
    EXPECT_TRUE(accepted) << text;
    EXPECT_TRUE(same(fast.get(), plain.get())) << text;
    return true;
}

TEST(ReadJson, AgreesWithYajlOnAnyText) {
    for (std::string const& text : jsonTexts()) {
        agree(text);
        for (std::size_t size = 0; size < text.size(); ++size) agree(text.substr(0, size));
    }
    NewTrees random;
    int fast = 0;
    constexpr int texts = 60000;
    for (int i = 0; i < texts && !testing::Test::HasFailure(); ++i) fast += agree(mutated(random));
    EXPECT_GT(fast, texts / 50);
}

TEST(ReadJson, UsesTheFastReaderForOrdinaryTexts) {
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
    NewTrees random;
    std::string text = "[";
    for (int i = 0; i < 5000; ++i) {
        unsigned const members = random.below(random.below(4) == 0 ? 30 : 5);
        unsigned const first = random.below(50);
        unsigned const step = random.below(8) == 0 ? random.below(50) : 7;  // otherwise all are different
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
