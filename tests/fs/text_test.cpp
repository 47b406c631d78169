#include "fs/text.h"
#include "fs/encoding.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <tuple>

namespace launcher {
namespace {

TEST(ToWide, GivesAnEmptyTextForNullAndForAnEmptyText) {
    EXPECT_EQ(ToWide(nullptr), L"");
    EXPECT_EQ(ToWide(""), L"");
}

TEST(ToNarrow, GivesAnEmptyTextForNullAndForAnEmptyText) {
    EXPECT_EQ(ToNarrow(nullptr), "");
    EXPECT_EQ(ToNarrow(L""), "");
}

TEST(ToWide, StopsAtTheTerminatorOfAString) {
    EXPECT_EQ(ToWide(std::string("ab\0cd", 5)), L"ab");
}

// What is no text in one encoding becomes replacement characters in the other, and never an empty
// result or an exception.
TEST(ToWide, ReplacesInvalidBytes) {
    EXPECT_EQ(ToWide("a\xFFz"), L"a\uFFFDz");
}

TEST(ToNarrow, ReplacesALoneSurrogate) {
    const wchar_t lone[] = {L'a', 0xD83D, L'z', 0};
    EXPECT_EQ(ToNarrow(lone), "a\xEF\xBF\xBDz");
}

// One character of every length in both encodings, and the same text in each.
using Encodings = std::tuple<const char*, const wchar_t*>;
class Conversion : public testing::TestWithParam<Encodings> {};
INSTANTIATE_TEST_SUITE_P(Text, Conversion,
                         testing::Values(Encodings{"plain", L"plain"}, Encodings{"\x7F", L"\x7F"},
                                         Encodings{"\xC2\x80", L"\x80"},
                                         Encodings{"gr\xC3\xB6\xC3\x9F", L"gr\u00F6\u00DF"},
                                         Encodings{"e\xCC\x81", L"e\u0301"},
                                         Encodings{"\xDF\xBF", L"\u07FF"},
                                         Encodings{"\xE0\xA0\x80", L"\u0800"},
                                         Encodings{"\xE2\x82\xAC", L"\u20AC"},
                                         Encodings{"\xEF\xBF\xBF", L"\uFFFF"},
                                         Encodings{"\xF0\x90\x80\x80", L"\xD800\xDC00"},
                                         Encodings{"\xF0\x9F\x92\xBF", L"\xD83D\xDCBF"},
                                         Encodings{"\xF4\x8F\xBF\xBF", L"\xDBFF\xDFFF"}));

TEST_P(Conversion, IsExactInBothDirections) {
    const auto& [narrow, wide] = GetParam();
    EXPECT_EQ(ToWide(narrow), wide);
    EXPECT_EQ(ToNarrow(wide), narrow);
}

std::string Utf8Of(char32_t c) {
    const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
    const auto tail = [&](int shift, char32_t value) {
        return byte(0x80 | ((value >> shift) & 0x3F));
    };
    if (c < 0x80) return {byte(c)};
    if (c < 0x800) return {byte(0xC0 | (c >> 6)), tail(0, c)};
    if (c < 0x10000) return {byte(0xE0 | (c >> 12)), tail(6, c), tail(0, c)};
    return {byte(0xF0 | (c >> 18)), tail(12, c), tail(6, c), tail(0, c)};
}

// Any character but zero and the surrogates, the shorter encodings as often as the longer ones.
char32_t RandomCharacter(std::mt19937& random) {
    for (;;) {
        const char32_t limit = char32_t{0x80} << (4 * (random() % 4));
        const char32_t c = 1 + random() % (limit == 0x80000 ? 0x10FFFF : limit);
        if (c < 0xD800 || c > 0xDFFF) return c;
    }
}

TEST(Conversion, BringsValidTextBackUnchanged) {
    std::mt19937 random(20240229);
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (auto length = random() % 40; length > 0; --length)
            text += Utf8Of(RandomCharacter(random));
        ASSERT_EQ(ToNarrow(ToWide(text).c_str()), text) << "round " << round;
    }
}

struct Replacement {
    const char* text;
    const char* find;
    const char* replacement;
    std::size_t start;
    const char* result;
    std::size_t count;
};
class ReplaceAllTable : public testing::TestWithParam<Replacement> {};
// The search begins at the start index and goes on behind what was put in: neither what lies before
// nor the replacement itself is searched.
INSTANTIATE_TEST_SUITE_P(Text, ReplaceAllTable,
                         testing::Values(Replacement{"", "x", "y", 0, "", 0},
                                         Replacement{"abc", "x", "y", 0, "abc", 0},
                                         Replacement{"xax", "x", "yy", 0, "yyayy", 2},
                                         Replacement{"xax", "x", "yy", 1, "xayy", 1},
                                         Replacement{"xax", "x", "", 0, "a", 2},
                                         Replacement{"aaaa", "aa", "a", 0, "aa", 2},
                                         Replacement{"aaaa", "aa", "a", 1, "aaa", 1},
                                         Replacement{"xx", "x", "xx", 0, "xxxx", 2},
                                         Replacement{"x", "x", "y", 5, "x", 0}));

TEST_P(ReplaceAllTable, ReplacesAndCounts) {
    const Replacement& row = GetParam();
    std::string text = row.text;
    EXPECT_EQ(ReplaceAll(text, row.find, row.replacement, row.start), row.count);
    EXPECT_EQ(text, row.result);
}

}  // namespace
}  // namespace launcher
