#include "fs/encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace launcher {
namespace {

TEST(Encoding, GivesAnEmptyTextForNullAndForAnEmptyText) {
    EXPECT_EQ(ToWide(nullptr), L"");
    EXPECT_EQ(ToWide(""), L"");
    EXPECT_EQ(ToNarrow(nullptr), "");
    EXPECT_EQ(ToNarrow(L""), "");
}

TEST(Encoding, StopsAtTheTerminatorOfAString) {
    EXPECT_EQ(ToWide(std::string("ab\0cd", 5)), L"ab");
}

// Replacement characters, and never an empty result or an exception.
TEST(Encoding, ReplacesWhatIsNoText) {
    EXPECT_EQ(ToWide("a\xFFz"), L"a\uFFFDz");
    const wchar_t loneSurrogate[] = {L'a', 0xD83D, L'z', 0};
    EXPECT_EQ(ToNarrow(loneSurrogate), "a\xEF\xBF\xBDz");
}

// The first and the last character of every length in either encoding.
TEST(Encoding, IsExactInBothDirections) {
    const std::pair<const char*, const wchar_t*> rows[] = {
        std::pair{"plain", L"plain"},
        std::pair{"\x7F", L"\x7F"},
        std::pair{"\xC2\x80", L"\x80"},
        std::pair{"\xDF\xBF", L"\u07FF"},
        std::pair{"\xE0\xA0\x80", L"\u0800"},
        std::pair{"\xEF\xBF\xBF", L"\uFFFF"},
        std::pair{"\xF0\x90\x80\x80", L"\xD800\xDC00"},
        std::pair{"\xF4\x8F\xBF\xBF", L"\xDBFF\xDFFF"},
        std::pair{"e\xCC\x81 gr\xC3\xB6\xC3\x9F \xE2\x82\xAC", L"e\u0301 gr\u00F6\u00DF \u20AC"}};
    for (const auto& [narrow, wide] : rows) {
        EXPECT_EQ(ToWide(narrow), wide);
        EXPECT_EQ(ToNarrow(wide), narrow);
    }
}

}  // namespace
}  // namespace launcher
