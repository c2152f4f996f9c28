// Tests IString: decoding, encoding and edits.
#include "foundation/urString/IString.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <unordered_set>

#include "foundation/urString/utf8.h"

using urString::CString;
using urString::Encoding;
using urString::IString;

namespace {

using namespace std::string_view_literals;
using Case = std::pair<std::string_view, std::u32string_view>;  // bytes, and their characters

TEST(IString, ReadsWellFormedUtf8AsWhatItSays) {
    Case const cases[] = {
        {"", U""},
        {"a\0b"sv, U"a\0b"sv},
        {"\x7f\xc2\x80\xdf\xbf", U"\u007f\u0080\u07ff"},
        {"\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf", U"\u0800\ud7ff\ue000\uffff"},
        {"\xf0\x90\x80\x80\xf4\x8f\xbf\xbf", U"\U00010000\U0010ffff"},
        {"\xef\xbb\xbfx", U"\ufeffx"},
    };
    for (auto const& [bytes, characters] : cases) {
        for (Encoding encoding : {Encoding::utf8, Encoding::multibyte}) {
            bool error = true;
            IString const text(bytes, encoding, &error);
            EXPECT_EQ(text.view(), characters) << bytes;
            EXPECT_FALSE(error) << bytes;
            EXPECT_EQ(text.asUTF8(), bytes);
            EXPECT_EQ(text.asMultibyte(), bytes);
            EXPECT_EQ(text.asUTF8StoreSize(), bytes.size() + 1);
        }
    }
}

TEST(IString, ReplacesEachIllFormedPieceOnceAndReportsIt) {
    Case const cases[] = {
        {"\x80", U"\ufffd"},
        {"\xff\xfe", U"\ufffd\ufffd"},
        {"a\xc3", U"a\ufffd"},
        {"\xc3(", U"\ufffd("},
        {"\xc0\xaf", U"\ufffd\ufffd"},                      // overlong: 0xc0 starts no character
        {"\xe0\x9f\xbf", U"\ufffd\ufffd\ufffd"},            // overlong
        {"\xe2\x82", U"\ufffd"},                            // cut short: one piece
        {"\xe2\x82z", U"\ufffdz"},                          //
        {"\xf0\x9f\x98", U"\ufffd"},                        //
        {"\xf0\x8f\xbf\xbf", U"\ufffd\ufffd\ufffd\ufffd"},  // overlong
        {"\xed\xa0\x80", U"\ufffd\ufffd\ufffd"},            // a surrogate
        {"\xf4\x90\x80\x80", U"\ufffd\ufffd\ufffd\ufffd"},  // beyond U+10FFFF
        {"\xf1\x80\x80\xe1\x80\xc2z\x80z", U"\ufffd\ufffd\ufffdz\ufffdz"},
    };
    for (auto const& [bytes, characters] : cases) {
        bool error = false;
        IString const text(bytes, Encoding::utf8, &error);
        EXPECT_EQ(text.view(), characters) << testing::PrintToString(bytes);
        EXPECT_TRUE(error);
        EXPECT_FALSE(urString::isUtf8(bytes));
        EXPECT_TRUE(urString::isUtf8(text.asUTF8().view()));
    }
}

TEST(IString, GivesBackEveryByteOfANameTheSystemGave) {
    unsigned const seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    static constexpr unsigned char interesting[] = {0x00, 'a',  0x80, 0x8f, 0x90, 0x9f, 0xa0, 0xbf, 0xc0, 0xc2,
                                                    0xe0, 0xe1, 0xed, 0xb2, 0xef, 0xf0, 0xf1, 0xf4, 0xf5, 0xff};
    for (int i = 0; i < 20000; ++i) {
        std::string bytes(random() % 9, '\0');
        for (char& byte : bytes) byte = static_cast<char>(interesting[random() % std::size(interesting)]);
        bool error = false, errorInText = false, errorAgain = true;
        IString const name(bytes, Encoding::multibyte, &error);
        ASSERT_EQ(name.asMultibyte(), bytes);
        ASSERT_EQ(IString(name.asWide()), name);

        IString const text(bytes, Encoding::utf8, &errorInText);
        ASSERT_EQ(error, errorInText);
        ASSERT_EQ(IString(text.asUTF8(), Encoding::utf8, &errorAgain), text);
        ASSERT_FALSE(errorAgain) << "what is written as UTF-8 is always well-formed";
        ASSERT_EQ(name.asUTF8().size() + 1, name.asUTF8StoreSize());
    }
}

TEST(IString, HoldsCharactersOnly) {
    EXPECT_EQ(IString(U"a\x110000z"sv).view(), U"a\ufffdz");
    std::u32string surrogate = {0xd800, 0xdc7f, 0xdcff, 0xdfff};
    EXPECT_EQ(IString(surrogate).view(), (std::u32string{0xfffd, 0xfffd, 0xdcff, 0xfffd}));
    EXPECT_EQ(IString(L"h\u00e9\U0001f600").asUTF8(), "h\xc3\xa9\xf0\x9f\x98\x80");
    EXPECT_EQ(IString(static_cast<wchar_t const*>(nullptr)), IString(static_cast<char const*>(nullptr)));
}

std::string bytesOf(IString const& path) { return std::string(path); }
std::string bytesOf(std::filesystem::path const& path, bool /*system's*/) { return path.string(); }

TEST(IString, TakesThePathsOfTheStandardLibraryAndGivesThemBack) {
    std::string const bytes = "gr\xc3\xbc\xc3\x9f/\xff\xfe.obj";
    EXPECT_EQ(bytesOf(bytes), bytes);
    EXPECT_EQ(bytesOf(std::string_view(bytes)), bytes);
    EXPECT_EQ(bytesOf(CString(bytes)), bytes);
    std::filesystem::path const path = "gr\u00fc\u00df/scene.obj";
    IString const text = path;
    EXPECT_EQ(bytesOf(path), path.string());
    EXPECT_EQ(bytesOf(text, true), path.string());
    EXPECT_EQ(std::filesystem::path(text), path);
    EXPECT_TRUE(text == path && text == path.string());
    EXPECT_EQ(IString(bytes, Encoding::utf8), IString(CString(bytes), Encoding::utf8));
}

TEST(IString, StoresAndRestoresWithItsTerminator) {
    IString const original(L"\u65e5\u672c");
    std::string const bytes(original.asUTF8().c_str(), original.asUTF8StoreSize());
    IString restored = "something else";
    EXPECT_EQ(restored.assign(bytes.data(), Encoding::utf8), original);
    restored.assign(bytes.data(), bytes.size(), Encoding::utf8);
    EXPECT_EQ(restored.length(), 3u) << "with a length, the NUL is a character";
}

TEST(IString, IsEditedByCharacters) {
    IString text(L"\u00fcber/den/Wolken");
    EXPECT_EQ(text.find('/'), 4u);
    EXPECT_EQ(text.rfind("/"), 8u);
    EXPECT_EQ(text.find("Meer"), IString::npos);
    EXPECT_EQ(text.substr(0, 4), L"\u00fcber");
    EXPECT_EQ(text.replace("/", "::"), 2u);
    EXPECT_EQ(text.replace(0, 4, "unter").erase(5, 5), "unter::Wolken");
    EXPECT_EQ(text.append(text).length(), 26u);
    EXPECT_TRUE(text.startsWith("unter") && text.endsWith(L"Wolken"));
    EXPECT_EQ(text.substr(99), "");
    EXPECT_EQ(text.replace(99, 1, "!")[26], U'!');
    EXPECT_EQ(text.erase(), IString());
    EXPECT_EQ(IString::format("%s %.1f", "x", 0.5) + "!", "x 0.5!");
    EXPECT_LT(IString(L"\uffff").compare(L"\U00010000"), 0);
    EXPECT_EQ((std::unordered_set<IString>{"a", "b", L"a"}).size(), 2u);
}

}  // namespace
