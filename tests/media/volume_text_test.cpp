#include "media/volume_text.h"

#include <gmock/gmock.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "media/input_stream.h"

namespace launcher {
namespace {

using testing::ElementsAre;

std::vector<std::string> LinesOf(const std::string& text) {
    InputStream input(text);
    std::vector<std::string> lines;
    for (std::string line; ReadTextLine(input, line);)
        lines.push_back(line);
    return lines;
}

TEST(ReadTextLine, EndsLinesAtLfAndTakesOneCrBeforeIt) {
    EXPECT_THAT(LinesOf("a\nb\r\nc\r\r\nd"), ElementsAre("a", "b", "c\r", "d"));
}

TEST(ReadTextLine, KeepsEveryOtherByte) {
    const std::string odd("\ta\rb \0\x1a\xff", 8);
    EXPECT_THAT(LinesOf(odd + "\n"), ElementsAre(odd));
}

TEST(ReadTextLine, ReadsEmptyLinesAndALastLineWithoutLf) {
    EXPECT_THAT(LinesOf("\n\r\n\rx\r"), ElementsAre("", "", "\rx"));
}

TEST(ReadTextLine, ReturnsTheStream) {
    InputStream input("only\n");
    std::string line;
    EXPECT_EQ(&ReadTextLine(input, line), &input);
    EXPECT_EQ(&ReadTextLine(input, line), &input);
}

// What is left in the line when there is none to read, and after another attempt: as the standard
// library's line reading leaves it.
TEST(ReadTextLine, FailsAtTheEnd) {
    struct {
        std::string content;
        int lines;
        std::string left;
    } const rows[] = {{"", 0, ""},   {"\n", 1, ""},       {"only\n", 1, ""}, {"only", 1, "only"},
                      {"\r", 1, ""}, {"a\r\r", 1, "a\r"}, {"a\nb", 2, "b"},  {"a\n\n", 2, ""}};
    for (const auto& [content, lines, left] : rows) {
        SCOPED_TRACE(testing::PrintToString(content));
        InputStream input(content);
        std::string line = "from before";
        for (int i = 0; i < lines; ++i)
            EXPECT_TRUE(ReadTextLine(input, line));
        EXPECT_FALSE(ReadTextLine(input, line));
        EXPECT_EQ(line, left);
        line = "changed\r";
        EXPECT_FALSE(ReadTextLine(input, line));
        EXPECT_EQ(line, "changed\r");
    }
}

// What a marker holds and the id that is read from it: the rest of the first line that begins with
// the seven characters, to the byte.
TEST(FindMtbDir, GivesTheRestOfTheFirstLineThatBeginsWithIt) {
    constexpr std::size_t kLong = 1'048'576;
    struct {
        std::string content;
        std::string id;
    } const rows[] = {
        {"MTBDIR=ABC\r\n", "ABC"},
        {"MTBDIR=ABC\n", "ABC"},
        {"MTBDIR=ABC", "ABC"},
        {"MTBDIR=ABC\r\r\n", "ABC\r"},
        {"mtbdir=ABC\r\n", ""},
        {" MTBDIR=ABC\r\n", ""},
        {"MTBDIR =ABC\r\n", ""},
        {"\xEF\xBB\xBFMTBDIR=ABC\r\n", ""},
        {"\xEF\xBB\xBFMTBDIR=A\r\nMTBDIR=B\r\n", "B"},
        {"one\r\ntwo\r\nMTBDIR=A\r\nfour\r\nMTBDIR=B\r\n", "A"},
        {"MTBDIR=\r\nMTBDIR=B\r\n", ""},
        {"MTBDIR=", ""},
        {"MTBDIR\nMTBDIR=A\n", "A"},
        {"MTBDIR= \tABC \r\n", " \tABC "},
        {"MTBDIR=A=B\n", "A=B"},
        {std::string("MTBDIR=A\0B\n", 11), std::string("A\0B", 3)},
        {"x\x1a\nMTBDIR=A\n", "A"},
        {"MTBDIR=\xff\xfe\x80\n", "\xff\xfe\x80"},
        {"", ""},
        {"one\r\ntwo\r\n", ""},
        {std::string(kLong, 'x') + "\nMTBDIR=A\n", "A"},
        {std::string(kLong, 'x') + "MTBDIR=A\n", ""},
        {"MTBDIR=" + std::string(kLong, 'v') + "\r\n", std::string(kLong, 'v')},
    };
    for (const auto& [content, id] : rows) {
        InputStream input(content);
        EXPECT_EQ(FindMtbDir(input), id) << content.substr(0, 100);
    }
}

std::optional<VolumeCount> Parse(const std::string& content) {
    InputStream input(content);
    return ParseVolumeCount(input);
}

// Count files that convert. The line is kept as it was read.
TEST(ParseVolumeCount, GivesTheFirstLineAndItsNumber) {
    struct {
        std::string content;
        std::string line;
        int count;
    } const rows[] = {
        {"3\r\n", "3", 3},
        {"3", "3", 3},
        {"3\n4\n", "3", 3},
        {"  4\n", "  4", 4},
        {"4 volumes\r\n", "4 volumes", 4},
        {"-3\n", "-3", -3},
        {"+5\n", "+5", 5},
        {"007\n", "007", 7},
        {"2147483647\n", "2147483647", 2147483647},
        {"-2147483648\n", "-2147483648", -2147483647 - 1},
        {"3\r\r\n", "3\r", 3},
        {std::string("3\0x\n", 4), std::string("3\0x", 3), 3},
    };
    for (const auto& row : rows) {
        const std::optional<VolumeCount> count = Parse(row.content);
        ASSERT_TRUE(count) << row.content;
        EXPECT_EQ(count->line, row.line);
        EXPECT_EQ(count->count, row.count);
    }
}

TEST(ParseVolumeCount, GivesNothingForALineThatIsNoNumber) {
    for (const char* content : {"", "\n3\n", "\r\n3\n", "x3\n", "three\n", " \n", "- 3\n", "-\n",
                                "\xEF\xBB\xBF"
                                "3\n",
                                "2147483648\n", "-2147483649\n"})
        EXPECT_FALSE(Parse(content)) << content;
}

TEST(ToIntOr, ReadsTheLeadingNumber) {
    EXPECT_EQ(ToIntOr("42", -1), 42);
    EXPECT_EQ(ToIntOr("1a", -1), 1);
    EXPECT_EQ(ToIntOr(" \t7", -1), 7);
    EXPECT_EQ(ToIntOr("+7", -1), 7);
    EXPECT_EQ(ToIntOr("-7", -1), -7);
    EXPECT_EQ(ToIntOr("08", -1), 8);
    EXPECT_EQ(ToIntOr("0x1F", -1), 0);
    EXPECT_EQ(ToIntOr("2147483647", -1), 2147483647);
}

TEST(ToIntOr, FallsBackWithoutANumberThatFits) {
    for (const int fallback : {-1, 5})
        for (const char* text : {"", " ", "ab", "-", "+-1", "12345678901", "2147483648",
                                 "-2147483649", "99999999999999999999"})
            EXPECT_EQ(ToIntOr(text, fallback), fallback) << text;
}

}  // namespace
}  // namespace launcher
