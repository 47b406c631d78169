// The last line of a terminal while a run is watched.

#include "mediatool/run/status_line.h"

#include <gtest/gtest.h>

namespace launcher::mediatool {
namespace {

TEST(StatusLineText, IsTheTimeAndTheLastMessage) {
    EXPECT_EQ(StatusText(3'899'000, " INFO: 64-bit OS", 79), L"1:04:59   INFO: 64-bit OS");
    EXPECT_EQ(StatusText(999, "", 79), L"0:00:00  ");
}

TEST(StatusLineText, IsNoLongerThanTheTerminalIsWide) {
    EXPECT_EQ(StatusText(0, "abcdef", 12), L"0:00:00  abc");
    EXPECT_EQ(StatusText(0, "abcdef", 0), L"");
    // Not half a character of two units.
    EXPECT_EQ(StatusText(0, "ab\xF0\x9F\x92\xBF", 12), L"0:00:00  ab");
    EXPECT_EQ(StatusText(0, "a\xF0\x9F\x92\xBF", 12), L"0:00:00  a\xD83D\xDCBF");
}

// Else it would go on in a next line, and stay there.
TEST(StatusLineText, GivesWideSignsTwoCells) {
    EXPECT_EQ(StatusText(0, "日本語", 13), L"0:00:00  日本");
    EXPECT_EQ(StatusText(0, "日本語", 14), L"0:00:00  日本");
    EXPECT_EQ(StatusText(0, "日本語", 15), L"0:00:00  日本語");
    EXPECT_EQ(StatusText(0, "Größe", 14), L"0:00:00  Größe");
    EXPECT_EQ(StatusText(0, "\u10FF\u10FF", 11), L"0:00:00  \u10FF\u10FF");
    EXPECT_EQ(StatusText(0, "\u1100\u1100", 11), L"0:00:00  \u1100");
}

TEST(StatusLineText, HasTheFirstLineOnly) {
    EXPECT_EQ(StatusText(0, "one\r\ntwo", 79), L"0:00:00  one");
    EXPECT_EQ(StatusText(0, "\ntwo", 79), L"0:00:00  ");
}

TEST(StatusLineText, IsFoundSoonInALineOfAMegabyte) {
    EXPECT_EQ(StatusText(0, std::string(1 << 20, 'x'), 12), L"0:00:00  xxx");
}

TEST(StatusLineText, MovesNothingOnTheTerminal) {
    EXPECT_EQ(StatusText(0, "a\tb\x1B[2J", 79), L"0:00:00  a b\\x1B[2J");
}

}  // namespace
}  // namespace launcher::mediatool
