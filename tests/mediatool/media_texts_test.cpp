// The small texts of a disc set: markers, counts, lists of checksums, and the page of messages;
// each rule on both of its sides.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include "fs/encoding.h"
#include "fs/exceptions.h"
#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/media/checksums.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/media/markers.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher::mediatool {
namespace {

using namespace std::string_literals;  // NOLINT(google-build-using-namespace)
using test::TemporaryFolder;
using testing::ElementsAre;

// --- marker_bytes

TEST(MarkerBytes, AreUtf16ByTheirMarkOrTheirFirstTwoCharacters) {
    for (const std::string& bytes : {"\xFF\xFE"s, "\xFE\xFF"s,
                                     "1\0"s
                                     "2\0"s,
                                     "\0"s
                                     "1\0"s
                                     "2"s,
                                     "1\0"s
                                     "2\0"s
                                     "3\0"s})
        EXPECT_TRUE(IsUtf16(bytes)) << testing::PrintToString(bytes);
    for (const std::string& bytes : {""s, "1"s, "1\0"s,
                                     "1\0"s
                                     "2"s,
                                     "1234"s, "\0\0\0\0"s, "1\0\0\0"s,
                                     "1\0"s
                                     "23"s,
                                     "\0"s
                                     "123"s,
                                     "ab\xFF\xFE"s, "ab\xFE\xFF"s})
        EXPECT_FALSE(IsUtf16(bytes)) << testing::PrintToString(bytes);
}

TEST(MarkerBytes, AreLinesUpToALineFeed) {
    EXPECT_THAT(LinesOf("a\r\nb\n\nc\r\r\nd\re"), ElementsAre("a", "b", "", "c\r", "d\re"));
    EXPECT_THAT(LinesOf("a\n"), ElementsAre("a"));
    EXPECT_THAT(LinesOf(""), ElementsAre());
}

TEST(MarkerBytes, HoldControlCharactersOtherThanTheTab) {
    for (const char* text : {"", "a\tb", "\xC3\xA9", " ~"})
        EXPECT_FALSE(HasControlCharacter(text)) << text;
    for (const char* text : {"a\r", "\x1B[", "\x7F", "\xC2\x85"})
        EXPECT_TRUE(HasControlCharacter(text)) << text;
}

TEST(MarkerBytes, AreSpeltOut) {
    EXPECT_EQ(SpeltOut("a ~"), "a ~");
    EXPECT_EQ(SpeltOut("e\xCC\x81\xC3\xA9"), "e\\u0301\\u00E9");
    EXPECT_EQ(SpeltOut("\xF0\x9F\x92\xBF"), "\\uD83D\\uDCBF");
    EXPECT_EQ(SpeltOut("a\tb"), "a\\x09b");
}

TEST(MarkerBytes, AreComposed) {
    EXPECT_EQ(Composed("cafe\xCC\x81"), L"caf\u00E9");
    EXPECT_EQ(Composed("SET"), L"SET");
    EXPECT_EQ(Composed(""), L"");
    const test::Hook<decltype(&FoldStringW)> fails("FoldStringW",
                                                   test::FailsWith(ERROR_INVALID_PARAMETER, 0));
    EXPECT_EQ(Composed("SET"), L"SET");
}

TEST(MarkerBytes, AreUtf8) {
    for (const char* text : {"", "a", "\xC3\xA9"})
        EXPECT_TRUE(IsUtf8(text)) << text;
    for (const char* text : {"\xE9", "a\xFF", "\xC3"})
        EXPECT_FALSE(IsUtf8(text)) << text;
}

TEST(MarkerBytes, AreTrimmedOfBlanksAndTabs) {
    EXPECT_EQ(Trimmed(" \ta b\t "), "a b");
    EXPECT_EQ(Trimmed("\r\n"), "\r\n");
    EXPECT_EQ(Trimmed("x"), "x");
    for (const char* blank : {"", " ", "\t", " \t "})
        EXPECT_EQ(Trimmed(blank), "");
}

TEST(MarkerBytes, AreANumberOfDigitsOnly) {
    for (const char* text : {"0", "9", "0123456789"})
        EXPECT_TRUE(IsNumber(text)) << text;
    for (const char* text : {"", "/", ":", "1 ", "-1", "1a"})
        EXPECT_FALSE(IsNumber(text)) << text;
}

// --- markers

TEST(CountFile, KeepsItsOtherLinesAndLineEnds) {
    EXPECT_EQ(CountFileText(12), "12\r\n");
    for (const auto& [before, after] :
         {std::pair("", "5\r\n"), std::pair(" ", "5\r\n"), std::pair("\t", "5\r\n"),
          std::pair("\n", "5\r\n"), std::pair("\r\n\r\n", "5\r\n"), std::pair("3", "5\r\n"),
          std::pair("3\n", "5\n"), std::pair("3\r\n", "5\r\n"), std::pair(" 3\t \r\n", "5\r\n"),
          std::pair("0123456789\n", "5\n"),
          std::pair("3\nnotes\r\n\n\nmore", "5\nnotes\r\n\n\nmore"), std::pair("3\r\nx", "5\r\nx")})
        EXPECT_EQ(WithCount(before, 5), after) << testing::PrintToString(before);
    for (const char* other : {"x", "3 volumes\r\n", "-3", "\n3\n", " \r\n3", "x\t\r\n"})
        EXPECT_EQ(WithCount(other, 5), std::nullopt) << testing::PrintToString(other);
}

TEST(Marker, KeepsItsOtherLinesAndLineEnds) {
    EXPECT_EQ(MarkerText("SET"), "MTBDIR=SET\r\n");
    for (const auto& [before, after] :
         {std::pair("MTBDIR=OLD\r\n", "MTBDIR=NEW\r\n"), std::pair("MTBDIR=OLD\n", "MTBDIR=NEW\n"),
          std::pair("MTBDIR=OLD", "MTBDIR=NEW\r\n"), std::pair("MTBDIR=", "MTBDIR=NEW\r\n"),
          std::pair("MTBDIR=OLD \t\r\n", "MTBDIR=NEW\r\n"),
          std::pair("; notes\n\nMTBDIR=OLD\r\nmore", "; notes\n\nMTBDIR=NEW\r\nmore"),
          std::pair("MTBDIR=A\nMTBDIR=B\n", "MTBDIR=NEW\nMTBDIR=NEW\n"),
          std::pair("a\rb\nMTBDIR=A\n", "a\rb\nMTBDIR=NEW\n"), std::pair("mtbdir=A", "mtbdir=A"),
          std::pair(" MTBDIR=A\r", " MTBDIR=A\r"), std::pair("", "")})
        EXPECT_EQ(WithId(before, "NEW"), after) << testing::PrintToString(before);
    EXPECT_EQ(WithId("MTBDIR=OLD\rnotes\n", "NEW"), std::nullopt);
}

// --- checksums

// All digits, in the capitals in which they are written here.
constexpr char kHash[] = "0123456789abcdefABCDEF0123456789abcdefABCDEF0123456789abcdefABCD";
constexpr char kLowerHash[] = "0123456789abcdefabcdef0123456789abcdefabcdef0123456789abcdefabcd";
static_assert(sizeof kHash == 65);

TEST(ChecksumList, TakesTheLinesOfOtherPrograms) {
    const std::string hash = kHash;
    for (const auto& [line, name] :
         {std::pair(hash + "  a", "a"), std::pair(hash + "  ab", "ab"),
          std::pair(hash + " *a", "a"), std::pair(hash + "  ./a", "a"),
          std::pair(hash + " *./a/b", "a/b"), std::pair(hash + "  a./", "a./"),
          std::pair(hash + "  .a", ".a"), std::pair(hash + "   a", " a"),
          std::pair(hash + "  a\\", "a\\"), std::pair(hash + "  a\\n", "a\\n"),
          std::pair("\\" + hash + "  a\\\\b\\nc\\rd", "a\\b\nc\rd"),
          std::pair("\\" + hash + "  \\n", "\n"), std::pair("\\" + hash + "  a\\", "a\\"),
          std::pair("\\" + hash + "  nr\\x", "nrx"), std::pair(hash + "  a\rb", "a\rb"),
          std::pair(hash + "  a\r", "a"), std::pair(hash + "  a\r\r", "a\r"),
          std::pair("\xEF\xBB\xBF" + hash + "  a", "a"),
          std::pair(hash + "  a\xEF\xBB\xBF", "a\xEF\xBB\xBF")})
        for (const char* end : {"", "\n"}) {
            const ChecksumList list = ParseChecksums(line + end);
            EXPECT_EQ(list.badLine, 0u) << line;
            ASSERT_EQ(list.files.size(), 1u) << line;
            EXPECT_EQ(list.files[0].name, name);
            EXPECT_EQ(list.files[0].hash, kLowerHash);
        }
}

TEST(ChecksumList, TakesNoOtherLines) {
    const std::string hash = kHash;
    for (const std::string& line :
         {hash, hash + " ", hash + "  ", hash + " *", hash + " xa", hash + "x a", hash + "* a",
          hash + "**a", hash + "xx", "g" + hash.substr(1) + "  a", hash.substr(0, 63) + "g  a",
          hash.substr(1) + "  a", hash.substr(1) + "  ab", hash + "0  a", " " + hash + "  a",
          "\r" + hash + "  a", "x"s})
        for (const char* end : {"", "\n"}) {
            const ChecksumList list = ParseChecksums(line + end);
            EXPECT_EQ(list.badLine, 1u) << line;
            EXPECT_TRUE(list.files.empty()) << line;
        }
}

TEST(ChecksumList, NamesItsFirstBadLine) {
    const std::string good = kHash + "  a\n"s;
    EXPECT_EQ(ParseChecksums("").badLine, 0u);
    EXPECT_EQ(ParseChecksums("\n\r\n" + good).badLine, 0u);
    const ChecksumList list = ParseChecksums(good + "\r\nbad\nworse\n" + good);
    EXPECT_EQ(list.badLine, 3u);
    EXPECT_EQ(list.files.size(), 2u);
}

TEST(ChecksumList, HasLinesAsSha256sumWritesThem) {
    EXPECT_EQ(ChecksumLine("12", "a/b c"), "12  a/b c\n");
    EXPECT_EQ(ChecksumLine("12", "a\\b\nc\rd"), "\\12  a\\\\b\\nc\\rd\n");
    EXPECT_EQ(ChecksumLine("12", "nr"), "12  nr\n");
}

TEST(ChecksumList, IsOfEachFolderOnce) {
    std::vector<std::string> texts;
    for (const Path& folder :
         FoldersOf({Path("m:\\2"), Path("M:\\3"), Path("M:\\3"), Path("M:\\4")},
                   {"M:\\1", "M:\\x\\..\\2", "M:\\1"}))
        texts.push_back(folder.Text());
    EXPECT_THAT(texts, ElementsAre("M:\\1", "M:\\2", "M:\\3", "M:\\4"));
}

TEST(Checksum, IsThatOfAWholeFile) {
    const TemporaryFolder folder;
    const Path file(folder.Write("abc", "abc"));
    const std::string hash = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
    EXPECT_EQ(ChecksumOf(file, nullptr), hash);
    std::uint64_t bytes = 0;
    EXPECT_EQ(ChecksumOf(file, [&bytes](std::uint64_t more) { bytes += more; }), hash);
    EXPECT_EQ(bytes, 3u);
    const FileHandle lock(CreateFileW(ToWide(file.Text()).c_str(), GENERIC_READ, 0, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    try {
        ChecksumOf(file, nullptr);
        ADD_FAILURE() << "reads a file that is in use";
    } catch (const Refused& refused) {
        EXPECT_EQ(refused.what(), "\"" + file.Text() + "\" cannot be read: " +
                                      ErrorText(ERROR_SHARING_VIOLATION) + ".");
    }
}

TEST(FilesOfVolume, AreAllButTheListAndWhatCreateLeaves) {
    const TemporaryFolder folder;
    for (const char* name :
         {"a", "sub/b", "sub/sub/c", "sub/SHA256SUMS", "sub/mediatool-unfinished.txt",
          "System Volume Information/d", "$RECYCLE.BIN/e", "SHA256sums", "Mediatool-Unfinished.txt",
          "mediatool-unfinished.TMP", "sub/mediatool-unfinished.tmp", "2/content"})
        folder.Write(name, name);
    SizesByName expected;
    for (const char* name :
         {"a", "sub/b", "sub/sub/c", "sub/SHA256SUMS", "sub/mediatool-unfinished.txt",
          "System Volume Information/d", "$RECYCLE.BIN/e"})
        expected[name] = std::string(name).size();
    const auto unlisted = [](const Path& path) { ADD_FAILURE() << path.Text(); };
    EXPECT_EQ(FilesOfVolume(Path(folder.Text()), {Path(folder.Text("2"))}, unlisted), expected);
}

}  // namespace
}  // namespace launcher::mediatool
