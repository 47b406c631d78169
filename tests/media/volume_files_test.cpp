#include "media/volume_files.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <sstream>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::Optional;

std::vector<std::string> LinesOf(const std::string& text) {
    std::istringstream input(text);
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

TEST(ReadTextLine, FailsAtTheEnd) {
    std::istringstream input("only\n");
    std::string line;
    EXPECT_TRUE(ReadTextLine(input, line));
    EXPECT_EQ(&ReadTextLine(input, line), &input);
    EXPECT_TRUE(input.fail());
}

struct MarkerCase {
    const char* behaviour;
    std::string content;
    std::string id;
};

void PrintTo(const MarkerCase& value, std::ostream* out) {
    *out << value.behaviour;
}

class ReadMtbDirContent : public testing::TestWithParam<MarkerCase> {};

TEST_P(ReadMtbDirContent, GivesTheId) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(ReadMtbDir(folder.Write("1.txt", GetParam().content)), GetParam().id);
}

// What a marker holds and the id that is read from it: the rest of the first line that begins with
// the seven characters, to the byte.
const MarkerCase kMarkerCases[] = {
    {"CrLf", "MTBDIR=ABC\r\n", "ABC"},
    {"Lf", "MTBDIR=ABC\n", "ABC"},
    {"LastLineWithoutLf", "MTBDIR=ABC", "ABC"},
    {"LastLineWithCrAlone", "MTBDIR=ABC\r", "ABC"},
    {"SecondCrStays", "MTBDIR=ABC\r\r\n", "ABC\r"},
    {"CrInsideStays", "MTBDIR=A\rB\r\n", "A\rB"},
    {"LowerCase", "mtbdir=ABC\r\n", ""},
    {"BlankBefore", " MTBDIR=ABC\r\n", ""},
    {"BlankBehindTheWord", "MTBDIR =ABC\r\n", ""},
    {"ByteOrderMark", "\xEF\xBB\xBFMTBDIR=ABC\r\n", ""},
    {"ByteOrderMarkOnAnEarlierLine", "\xEF\xBB\xBFMTBDIR=A\r\nMTBDIR=B\r\n", "B"},
    {"FirstOfTwo", "one\r\ntwo\r\nMTBDIR=A\r\nfour\r\nMTBDIR=B\r\n", "A"},
    {"EmptyValueEndsTheSearch", "MTBDIR=\r\nMTBDIR=B\r\n", ""},
    {"EmptyValueWithoutLf", "MTBDIR=", ""},
    {"ShorterLine", "MTBDIR\nMTBDIR=A\n", "A"},
    {"BlanksStay", "MTBDIR= \tABC \r\n", " \tABC "},
    {"EqualsSignInTheValue", "MTBDIR=A=B\n", "A=B"},
    {"NulInsideTheValue", std::string("MTBDIR=A\0B\n", 11), std::string("A\0B", 3)},
    {"NulOnAnEarlierLine", std::string("\0\0\nMTBDIR=A\n", 12), "A"},
    {"NulBeforeTheWord", std::string("\0MTBDIR=A\n", 10), ""},
    {"EndOfFileCharacter", "x\x1a\nMTBDIR=A\n", "A"},
    {"BytesThatAreNoText", "MTBDIR=\xff\xfe\x80\n", "\xff\xfe\x80"},
    {"EmptyFile", "", ""},
    {"NoSuchLine", "one\r\ntwo\r\n", ""},
    {"LongLineBefore", std::string(1 << 20, 'x') + "\nMTBDIR=A\n", "A"},
    {"LongLineWithTheWordInside", std::string(1 << 20, 'x') + "MTBDIR=A\n", ""},
    {"LongValue", "MTBDIR=" + std::string(1 << 20, 'v') + "\r\n", std::string(1 << 20, 'v')},
};

INSTANTIATE_TEST_SUITE_P(, ReadMtbDirContent, testing::ValuesIn(kMarkerCases));

TEST(ReadMtbDir, ReadsALineWhereverItLies) {
    const test::TemporaryFolder folder;
    for (std::size_t before = 480; before < 530; ++before) {
        const std::string content = std::string(before, '\n') + "MTBDIR=ABC\r\n";
        ASSERT_EQ(ReadMtbDir(folder.Write("1.txt", content)), "ABC") << before;
    }
}

TEST(ReadMtbDir, TakesAnyNameInUtf8) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(ReadMtbDir(folder.Write("Me\xCC\x81"
                                      "dia \xE4\xB8\xAD \xF0\x9F\x92\xBF/1.txt",
                                      "MTBDIR=ABC\n")),
              "ABC");
}

TEST(ReadMtbDir, GivesNothingForWhatIsNoFile) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(ReadMtbDir(folder.Text("missing.txt")), "");
    EXPECT_EQ(ReadMtbDir(folder.Text("no such folder\\1.txt")), "");
    EXPECT_EQ(ReadMtbDir(folder.MakeDir("1.txt")), "");
    EXPECT_EQ(ReadMtbDir(""), "");
}

FileHandle OpenElsewhere(const std::string& path, DWORD sharing) {
    FileHandle file(CreateFileW(ToWide(path).c_str(), GENERIC_READ | GENERIC_WRITE, sharing,
                                nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    EXPECT_TRUE(file);
    return file;
}

TEST(ReadMtbDir, ReadsAFileThatIsOpenForWriting) {
    const test::TemporaryFolder folder;
    const std::string path = folder.Write("1.txt", "MTBDIR=ABC\n");
    const FileHandle writer = OpenElsewhere(path, FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_EQ(ReadMtbDir(path), "ABC");
}

TEST(ReadMtbDir, GivesNothingForAFileThatIsNotShared) {
    const test::TemporaryFolder folder;
    const std::string path = folder.Write("1.txt", "MTBDIR=ABC\n");
    {
        const FileHandle owner = OpenElsewhere(path, 0);
        EXPECT_EQ(ReadMtbDir(path), "");
    }
    EXPECT_EQ(ReadMtbDir(path), "ABC");
}

TEST(ReadMtbDir, LetsGoOfTheFile) {
    const test::TemporaryFolder folder;
    const std::string path = folder.Write("1.txt", "MTBDIR=ABC\nmore\n");
    ReadMtbDir(path);
    EXPECT_TRUE(OpenElsewhere(path, 0));
}

struct CountCase {
    const char* behaviour;
    std::string content;
    std::string line;
    int count;
};

void PrintTo(const CountCase& value, std::ostream* out) {
    *out << value.behaviour;
}

class ReadVolumeCountContent : public testing::TestWithParam<CountCase> {};

TEST_P(ReadVolumeCountContent, GivesTheFirstLineAndItsNumber) {
    const test::TemporaryFolder folder;
    EXPECT_THAT(ReadVolumeCount(folder.Write("volumes.txt", GetParam().content)),
                Optional(AllOf(Field(&VolumeCount::line, GetParam().line),
                               Field(&VolumeCount::count, GetParam().count))));
}

// Count files that convert. The line is kept as it was read.
const CountCase kCountCases[] = {
    {"CrLf", "3\r\n", "3", 3},
    {"NoLf", "3", "3", 3},
    {"FurtherLinesAreIgnored", "3\n4\n", "3", 3},
    {"BlanksBefore", "  4\n", "  4", 4},
    {"WordsBehind", "4 volumes\r\n", "4 volumes", 4},
    {"Negative", "-3\n", "-3", -3},
    {"Plus", "+5\n", "+5", 5},
    {"LeadingZeros", "007\n", "007", 7},
    {"Largest", "2147483647\n", "2147483647", 2147483647},
    {"Smallest", "-2147483648\n", "-2147483648", -2147483647 - 1},
    {"SecondCrStays", "3\r\r\n", "3\r", 3},
    {"NulBehind", std::string("3\0x\n", 4), std::string("3\0x", 3), 3},
};

INSTANTIATE_TEST_SUITE_P(, ReadVolumeCountContent, testing::ValuesIn(kCountCases));

TEST(ReadVolumeCount, GivesNothingForALineThatIsNoNumber) {
    const test::TemporaryFolder folder;
    for (const char* content : {"", "\n3\n", "\r\n3\n", "x3\n", "three\n", " \n", "- 3\n", "-\n",
                                "\xEF\xBB\xBF"
                                "3\n",
                                "2147483648\n", "-2147483649\n"})
        EXPECT_EQ(ReadVolumeCount(folder.Write("volumes.txt", content)), std::nullopt) << content;
}

TEST(ReadVolumeCount, GivesNothingForAFileThatCannotBeRead) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(ReadVolumeCount(folder.Text("missing.txt")), std::nullopt);
    EXPECT_EQ(ReadVolumeCount(folder.MakeDir("folder.txt")), std::nullopt);
    const std::string path = folder.Write("volumes.txt", "3\n");
    const FileHandle owner = OpenElsewhere(path, 0);
    EXPECT_EQ(ReadVolumeCount(path), std::nullopt);
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
