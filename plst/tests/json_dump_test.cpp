// Tests the readable dump: layout, tolerance, files, depth.
#include <algorithm>
#include <fstream>

#include "foundation/ur/tests/TemporaryFolder.h"
#include "foundation/ur/tests/smallStack.h"
#include "foundation/urOS/MemoryIOStream.h"
#include "plst/impl/json/JsonTextWriter.h"
#include "plst/json.h"
#include "plst/tests/plainYajl.h"

namespace nxPLST {
namespace {

using namespace test;

/// A tree from JSON, which cannot express null elements.
Reference<Item> tree(char const* json) {
    Reference<Item> item;
    EXPECT_TRUE(convertFromJSON(item, json));
    return item;
}

std::string dump(char const* json) { return std::string(asJSON(tree(json))); }

TEST(Dump, KeepsItsLayout) {
    struct Case {
        char const* json;
        char const* text;
    };
    Case const cases[] = {
        {R"({"a":1,"b":[1,2]})", "{\n    \"a\": 1,\n    \"b\": [1, 2]\n}\n"},
        {"{}", "{\n    \n}\n"},
        {"[]", "[]\n"},
        {"0.1", "0.1\n"},
        {"1234567", "1.23457e+06\n"},
        {"[true,false,\"x\"]", "[true, false, \"x\"]\n"},
        {R"([{"a":1},{"b":2}])", "[{\n    \"a\": 1\n},\n{\n    \"b\": 2\n}]\n"},
        {"[[1,2],[3]]", "[[1, 2],\n[3]]\n"},
        {"[[1],2,3]", "[[1],\n2, 3]\n"},
        {R"({"k":[[1],[2]]})", "{\n    \"k\": [[1],\n    [2]]\n}\n"},
        {R"({"k":{"l":{}},"m":0})",
         "{\n    \"k\": {\n        \"l\": {\n            \n        }\n    },\n    \"m\": 0\n}\n"},
        {R"(["a\"\\\n"])", "[\"a\"\\\n\"]\n"},
    };
    for (Case const& one : cases) EXPECT_EQ(dump(one.json), one.text) << one.json;
    EXPECT_EQ(asJSON(nullptr), "{}");
    EXPECT_EQ(asJSON(make<Double>(-0.0)), "-0\n");
    EXPECT_EQ(asJSON(make<Double>(std::nan(""))), "nan\n");
}

TEST(Dump, WritesNothingForANullOrUnknownElementButItsSeparators) {
    auto const array = arrayOf({nullptr, make<Stranger>(), nullptr});
    EXPECT_EQ(asJSON(dictionaryOf({{"a", nullptr}, {"b", array}})), "{\n    \"a\": ,\n    \"b\": [, , ]\n}\n");
}

TEST(Dump, FillsAFileOrLeavesItAsItWas) {
    ::test::TemporaryFolder const folder;
    std::string const path = (folder / "dump.txt").string();
    auto const contents = [&] {
        std::ifstream in(path, std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(in), {}};
    };
    EXPECT_TRUE(outputJSON(path.c_str(), tree("{\"a\":[1,2]}")));
    EXPECT_EQ(contents(), "{\n    \"a\": [1, 2]\n}\n");
    EXPECT_TRUE(outputJSON(path.c_str(), nullptr));
    EXPECT_EQ(contents(), "\n");
    std::filesystem::create_hard_link(path, folder / "other");
    EXPECT_TRUE(outputJSON(path.c_str(), tree("{\"b\":1}")));
    EXPECT_EQ(std::filesystem::hard_link_count(path), 2U) << "overwritten in place";
    EXPECT_EQ(contents(), "{\n    \"b\": 1\n}\n");
    EXPECT_FALSE(outputJSON((folder / "none/dump.txt").string().c_str(), tree("1")));
    EXPECT_FALSE(outputJSON(folder.path().string().c_str(), tree("1")));
}

#if defined(__linux__)
TEST(Dump, FailsWithTheDeviceItWritesTo) { EXPECT_FALSE(outputJSON("/dev/full", tree("[1]"))); }
#endif

TEST(Dump, OfAnyDepthStaysInProportion) {
    ::test::onSmallStack([] {
        Reference<Item> arrays = make<Array>();
        Reference<Item> dictionaries = make<Dictionary>();
        for (int i = 1; i < ::test::manyLevels; ++i) {
            arrays = arrayOf({arrays});
            dictionaries = dictionaryOf({{"k", dictionaries}});
        }
        EXPECT_EQ(asJSON(arrays).size(), 2U * ::test::manyLevels + 1);
        urString::CString const text = asJSON(dictionaries);
        EXPECT_LT(text.size(), std::size_t(256) << 20);
        EXPECT_TRUE(text.startsWith("{\n    \"k\": {\n        \"k\": {\n            \"k\""));
        EXPECT_TRUE(text.endsWith("\n}\n"));
    });
}

TEST(Dump, IndentsOnlyWhileThatIsFreeOrInProportion) {
    Reference<Item> item = make<Double>(1);
    for (int depth = 0; depth < 100; ++depth) item = dictionaryOf({{"k", item}});
    auto const text = [&](std::size_t freeIndentation) {
        urOS::MemoryIOStream stream;
        static_cast<void>(stream.open(urOS::openForWriting));
        EXPECT_TRUE(impl::JsonTextWriter(stream, mostExpandedText, freeIndentation).write(item.get()));
        return std::string(stream.contents());
    };
    std::string const whole(asJSON(item));
    EXPECT_EQ(text(4 * 100 * 101), whole);
    std::string const cut = text(100);
    std::string bare = whole;
    std::erase(bare, ' ');
    std::string bareCut = cut;
    std::erase(bareCut, ' ');
    EXPECT_EQ(bareCut, bare);
    // The nth line has 4n spaces and follows 7n - 5 other bytes.
    std::size_t const common = static_cast<std::size_t>(std::ranges::mismatch(cut, whole).in1 - cut.begin());
    std::size_t spaces = 0;
    std::size_t lines = 0;
    for (std::size_t n = 1; spaces + 4 * n <= 100 + 16 * (7 * n - 5); ++n) spaces += 4 * (lines = n);
    EXPECT_EQ(std::count(cut.begin(), cut.begin() + static_cast<std::ptrdiff_t>(common), '\n'),
              static_cast<std::ptrdiff_t>(lines + 1));
}

}  // namespace
}  // namespace nxPLST
