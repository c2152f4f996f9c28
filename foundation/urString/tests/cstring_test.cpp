// Tests CString: random edits against std::string, order, limits, and printf-style formatting.
#include "foundation/urString/CString.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "foundation/ur/containers.h"
#include "foundation/urString/tests/CommaLocale.h"

using urString::CString;

namespace {

/// The same text in a heap block, even if it is short.
CString onHeap(std::string_view text) {
    CString result;
    result.reserve(40);
    result.append(text);
    return result;
}

/// Applies the same random edits to a CString and to a std::string as the model.
class Pair {
public:
    explicit Pair(unsigned seed) : random_(seed) {}

    void edit() {
        switch (below(12)) {
            case 0: return both([&](auto& s) { s.append(std::string_view(text_)); }, someText());
            case 1: return both([&](auto& s) { s.append(std::string_view(s).substr(at_, count_)); });
            case 2: return both([&](auto& s) { s.replace(at_, count_, std::string_view(text_)); }, someText());
            case 3: return both([&](auto& s) { s.replace(at_, count_, std::string_view(s).substr(from_, 20)); });
            case 4: return both([&](auto& s) { s.erase(at_, count_); });
            case 5: return both([&](auto& s) { s.resize(count_ * 2, 'r'); });
            case 6: return both([&](auto& s) { s.assign(std::string_view(s).substr(at_, count_)); });
            case 7: return both([&](auto& s) { s += 'c'; });
            case 8: return both([&](auto& s) { s = std::decay_t<decltype(s)>(s); });
            case 9: return both([&](auto& s) { s.reserve(count_ * 3); });
            case 10: return both([&](auto& s) { s.append(count_, '\0'); });
            default: return both([&](auto& s) { s = s.substr(at_, count_); });
        }
    }

    void expectEqual() const {
        ASSERT_EQ(text.view(), model);
        ASSERT_EQ(text.c_str()[text.size()], '\0');
        ASSERT_EQ(text, CString(model)) << "unused inline bytes are not zero";
        ASSERT_EQ(text <=> CString(model), std::strong_ordering::equal);
        ASSERT_GE(text.capacity(), text.size());
    }

    CString text;
    std::string model;

private:
    std::size_t below(std::size_t bound) { return random_() % bound; }
    std::string someText() {
        static constexpr std::size_t sizes[] = {0, 1, 3, 7, 8, 9, 14, 15, 16, 17, 40, 300};
        return std::string(sizes[below(std::size(sizes))], static_cast<char>('a' + below(3)));
    }
    template <class Edit>
    void both(Edit edit, std::string given = {}) {
        if (model.size() > 2000) given.clear(), text.erase(5), model.erase(5);
        text_ = std::move(given);
        at_ = below(model.size() + 1);
        from_ = below(model.size() + 1);
        count_ = below(40);
        edit(text);
        edit(model);
    }

    std::mt19937 random_;
    std::string text_;
    std::size_t at_ = 0, from_ = 0, count_ = 0;
};

TEST(CString, DoesWhatTheStandardStringDoes) {
    unsigned const seed = std::random_device()();
    SCOPED_TRACE(seed);
    Pair pair(seed);
    for (int i = 0; i < 20000; ++i) {
        pair.edit();
        ASSERT_NO_FATAL_FAILURE(pair.expectEqual()) << "after edit " << i;
    }
}

TEST(CString, OrdersAndEqualsByBytesHoweverItIsStored) {
    using namespace std::string_view_literals;
    static constexpr std::string_view texts[] = {"",
                                                 "\0"sv,
                                                 "a",
                                                 "a\0"sv,
                                                 "a\x7f",
                                                 "a\x80",
                                                 "a\xff",
                                                 "ab",
                                                 "b",
                                                 "abcdefgh",
                                                 "abcdefg\xff",
                                                 "abcdefghi",
                                                 "abcdefghijklmno",
                                                 "abcdefghijklmnp",
                                                 "abcdefghijklmnop",
                                                 "\xff, and more"};
    auto const sign = [](int i) { return (i > 0) - (i < 0); };
    for (auto const a : texts) {
        for (auto const b : texts) {
            int const expected = sign(a.compare(b));
            for (CString const& left : {CString(a), onHeap(a)}) {
                for (CString const& right : {CString(b), onHeap(b)}) {
                    EXPECT_EQ(sign(left.compare(right)), expected) << left << " and " << right;
                    EXPECT_EQ(ur::less<CString>()(left, right), expected < 0);
                    EXPECT_EQ(left == right, expected == 0);
                    EXPECT_EQ(std::hash<CString>()(left) == std::hash<CString>()(right), expected == 0);
                }
                EXPECT_EQ(sign(left.compare(b)), expected);
                EXPECT_EQ(ur::less<CString>()(left, b), expected < 0);
                EXPECT_EQ(ur::less<CString>()(b, left), expected > 0);
                EXPECT_EQ(left == b, expected == 0);
                EXPECT_EQ(left < b, expected < 0);
            }
        }
    }
}

TEST(CString, IsTheSameHoweverMuchCanBeReadAfterIt) {
    std::string const bytes("text\0and what\xff follows it", 25);
    for (std::size_t size = 0; size <= 20; ++size) {
        std::string_view const text(bytes.data(), size);
        for (std::size_t readable = size; readable <= 24; ++readable) {
            // In a block of exactly its size, so that a read beyond it is detected.
            std::vector<char> const block(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(readable));
            CString const copy = CString::ofReadable({block.data(), size}, readable);
            ASSERT_EQ(copy.view(), text);
            ASSERT_EQ(copy, CString(text)) << "unused inline bytes are not zero";
            ASSERT_EQ(copy.c_str()[size], '\0');
        }
    }
}

TEST(CString, IsAKeyThatIsLookedUpByAnyText) {
    ur::map<CString, int> map;
    map["width"] = 1;
    map["height of the whole"] = 2;
    EXPECT_EQ(map.find("width")->second, 1);
    EXPECT_EQ(map.find(std::string_view("height of the whole")), map.begin());
    EXPECT_EQ(map.count(CString("depth")), 0u);
}

TEST(CString, KeepsEveryByteAndGivesItsTextAwayWhenMoved) {
    for (std::string const& bytes : {std::string("a\0b", 3), std::string(15, '\0'), std::string(100, '\0')}) {
        CString source(bytes);
        CString target = std::move(source);
        EXPECT_EQ(target, bytes);
        EXPECT_TRUE(source.empty());  // NOLINT(bugprone-use-after-move): a moved-from text is empty
        target = std::as_const(target);
        EXPECT_EQ(target, bytes);
    }
    EXPECT_EQ(CString(static_cast<char const*>(nullptr)), "");
}

[[gnu::noinline]] CString rootAtLength() { return "/./././././././././././"; }

TEST(CString, ReportsItsWholeSizeToUsersOfItsBytes) {
    CString const text = rootAtLength();
    EXPECT_TRUE(std::filesystem::is_directory(text.c_str()));
}

TEST(CString, FindsReplacesAndChangesCase) {
    CString text = "6ba7b810-9dad-11d1-80b4-00c04fd430c8";
    EXPECT_EQ(text.find('-'), 8u);
    EXPECT_EQ(text.rfind("-"), 23u);
    EXPECT_EQ(text.find("x"), CString::npos);
    EXPECT_EQ(text.find('6', 1000), CString::npos);
    EXPECT_EQ(text.replace("-", ""), 4u);
    EXPECT_EQ(text.toUpperCase(), "6BA7B8109DAD11D180B400C04FD430C8");
    EXPECT_EQ(CString("aaaa").replace("", "b"), 0u);
    CString growing = "aXa";
    EXPECT_EQ(growing.replace("a", growing), 2u);
    EXPECT_EQ(growing, "aXaXaXa");
    EXPECT_EQ(CString("\xc3\xa4@AZ[").toLowerCase(), "\xc3\xa4@az[");
    EXPECT_EQ(CString("\xc3\xa4`az{").toUpperCase(), "\xc3\xa4`AZ{");
}

TEST(CString, TakesPositionsBeyondTheEndForTheEnd) {
    CString text = "abc";
    EXPECT_EQ(text.substr(7), "");
    EXPECT_EQ(text[3], '\0');
    EXPECT_EQ(text[1000], '\0');
    EXPECT_EQ(text.replace(9, 9, "d"), "abcd");
    EXPECT_EQ(text.erase(2, CString::npos), "ab");
    EXPECT_EQ(text.erase(), "");
    EXPECT_THROW(text.resize(CString::npos), std::length_error);
    EXPECT_THROW(text.append(CString::npos, 'x'), std::length_error);
    EXPECT_EQ(text, "");
}

TEST(CString, GrowsSeldomAndKeepsItsTextThroughEverySizeOfBlock) {
    CString text = "x";
    std::string expected = "x";
    int blocks = 0;
    for (std::size_t capacity = text.capacity(); text.size() < 1000000;) {
        auto const letter = static_cast<char>('a' + text.size() % 23);
        text.append(text.view().substr(text.size() / 2, 3)).append(letter);
        expected += expected.substr(expected.size() / 2, 3) + letter;
        blocks += std::exchange(capacity, text.capacity()) != capacity;
    }
    EXPECT_TRUE(text.view() == expected);
    EXPECT_LT(blocks, 40);
    EXPECT_LT(CString(text).capacity(), text.size() + text.size() / 4);
}

TEST(CString, FormatsTextOfAnyLength) {
    EXPECT_EQ(CString::format("%d.%d.%d", 0, 5, 0), "0.5.0");
    EXPECT_EQ(CString::format("%s", ""), "");
    for (std::size_t size : {15u, 16u, 255u, 256u, 257u, 100000u}) {
        std::string const text(size, 'x');
        EXPECT_EQ(CString::format("%s", text.c_str()), text);
    }
}

TEST(CString, FormatsWithAPointInEveryLocaleAndLeavesTheLocaleAlone) {
    test::CommaLocale const locale;
    if (!locale.active()) GTEST_SKIP() << "no locale with a decimal comma can be made here";
    auto const isComma = [] {
        char plain[16];
        std::snprintf(plain, sizeof plain, "%.2f", 0.5);
        return plain == std::string_view("0,50");
    };
    ASSERT_TRUE(isComma());
    EXPECT_EQ(CString::format("%.2f", 0.5), "0.50");
    EXPECT_TRUE(isComma());
}

}  // namespace
