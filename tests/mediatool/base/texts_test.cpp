// Names, sentences and amounts, on both sides of every border.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "mediatool/base/amounts.h"
#include "mediatool/base/json.h"
#include "mediatool/base/names.h"
#include "mediatool/base/sentences.h"
#include "mediatool/base/sha256.h"
#include "tests/support/hook.h"

namespace launcher::test {
namespace {

using namespace mediatool;

// --- names

TEST(ReservedName, IsThatOfADevice) {
    for (const char* name :
         {"con",         "prn",         "aux",    "nul",       "CON",      "AUX",
          "Prn.txt",     "nul.tar.gz",  "aux ",   "con  .txt", "com1",     "com2",
          "com5",        "COM9",        "lpt1",   "lpt9",      "LPT5.doc", "com\xC2\xB9",
          "com\xC2\xB2", "lpt\xC2\xB3", "com1 .x"})
        EXPECT_TRUE(IsReservedName(name)) << name;
    for (const char* name : {"",
                             "c",
                             "cons",
                             "xcon",
                             " con",
                             "con_",
                             "conx.txt",
                             "com",
                             "com0",
                             "com10",
                             "com:",
                             "com/",
                             "coma",
                             "com\xC2\xB4",
                             "com\xC2\xB9"
                             "1",
                             "lpt",
                             "lpt0",
                             "lptx",
                             "comlpt1",
                             "cox1",
                             "printer",
                             "au",
                             "null",
                             "x.con",
                             "1com"})
        EXPECT_FALSE(IsReservedName(name)) << name;
}

TEST(ProgramName, HasOneOfSixExtensions) {
    for (const char* name : {"a.exe", "A.EXE", "b.dll", "b.Dll", "c.sys", "C.SYS", "d.msi", "e.msp",
                             "f.cab", "x.txt.cab", ".exe"})
        EXPECT_TRUE(IsProgramName(name)) << name;
    for (const char* name : {"", "exe", "aexe", "a.ex", "a.exe.txt", "a.exes", "dll.a", "a.sy",
                             "a.ms", "a.msx", "a.ca", "a.com"})
        EXPECT_FALSE(IsProgramName(name)) << name;
}

TEST(Leftover, IsKnownByItsName) {
    for (const char* name : {"a.tmp", "~1.TMP", ".tmp", "._a", "._", "thumbs.db", "Thumbs.DB",
                             ".ds_store", ".DS_Store"})
        EXPECT_TRUE(IsLeftover(name)) << name;
    for (const char* name : {"", "tmp", "a.tmpx", ".tmp.a", "a._", "_.a", ".a", "thumbs.dbx",
                             "xthumbs.db", "thumbs", ".ds_store2", "a.ds_store"})
        EXPECT_FALSE(IsLeftover(name)) << name;
}

TEST(UsableName, HasNoCharacterThatWindowsForbids) {
    for (const char* name :
         {"a", "a b", " a", ".a", "a;b", "a'b",
          "Gr\xC3\xB6\xC3\x9F"
          "e",
          "a\x7F", "a!b", "a=b", "a-b", "a+b", "a@b", "[a]", "a^b", "a`b", "{a}", "a~b"})
        EXPECT_TRUE(IsUsableName(name)) << name;
    for (const char* name :
         {"", "a<b", "a>b", "a:b", "a\"b", "a/b", "a\\b", "a|b", "a?b", "a*b", "<",
          "a\x1F"
          "b",
          "a\x01", "\t", "a.", "a ", ".", "con", "nul.txt"})
        EXPECT_FALSE(IsUsableName(name)) << name;
}

// --- sentences

std::string Utf8(char32_t code) {
    const auto byte = [code](int shift, int mark) {
        return static_cast<char>(mark | (static_cast<int>(code >> shift) & 0x3F));
    };
    if (code < 0x80) return {static_cast<char>(code)};
    if (code < 0x800) return {static_cast<char>(0xC0 | code >> 6), byte(0, 0x80)};
    return {static_cast<char>(0xE0 | code >> 12), byte(6, 0x80), byte(0, 0x80)};
}

std::string Hidden(char32_t code) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = code < 0x100 ? "\\x" : "\\u";
    for (int shift = code < 0x100 ? 4 : 12; shift >= 0; shift -= 4)
        text += kDigits[code >> shift & 15];
    return text;
}

// Every character of the first plane, and no other than these is hidden.
TEST(HarmlessText, HidesTheseCharactersAlone) {
    const auto isHidden = [](char32_t c) {
        return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x061C || c == 0x200B || c == 0x200E ||
               c == 0x200F || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2060 && c <= 0x206F) ||
               c == 0xFEFF || (c >= 0xFFF9 && c <= 0xFFFB);
    };
    const auto isControl = [](char32_t c) { return c < 0x20 || (c >= 0x7F && c <= 0x9F); };
    for (char32_t c = 1; c < 0x10000; ++c) {
        if (c >= 0xD800 && c < 0xE000) continue;  // halves of others
        const std::string text = "a" + Utf8(c) + "b";
        const std::string shown = "a" + Hidden(c) + "b";
        EXPECT_EQ(Harmless(text, ""), isHidden(c) ? shown : text);
        EXPECT_EQ(ControlsShown(text, ""), isControl(c) ? shown : text);
    }
}

TEST(HarmlessText, KeepsWhatItIsToldTo) {
    EXPECT_EQ(Harmless("\t\n\r"), "\t\n\\x0D");
    EXPECT_EQ(Harmless("\t\n\r", "\r"), "\\x09\\x0A\r");
    EXPECT_EQ(OnOneLine("a\tb\n\r\n"), "a\tb");
    EXPECT_EQ(OnOneLine("\r\n"), "");
}

// A byte that is no character's beginning is one by itself, and what follows it is looked at.
TEST(HarmlessText, GoesOnBehindBytesThatAreNoText) {
    EXPECT_EQ(Harmless("\x80\x1B"), "\x80\\x1B");
    EXPECT_EQ(Harmless("\xC1\xBF"), "\xC1\xBF");
    EXPECT_EQ(Harmless("\xC2\x1B"), "\xC2\\x1B");
    EXPECT_EQ(Harmless("\xE2\x80\x1B"), "\xE2\x80\\x1B");
    EXPECT_EQ(Harmless("\xDF\xBB\xBF"), "\xDF\xBB\xBF");
    EXPECT_EQ(Harmless("\xE0\x80\x9B"), "\\x1B");
    EXPECT_EQ(Harmless("\xF0\x80\x9B"), "\xF0\x80\x9B");
    EXPECT_EQ(Harmless("\xF0\x80\x80\x9B"), "\\x1B");
    EXPECT_EQ(Harmless("\xF0\x9F\x92\xBF\x1B"), "\xF0\x9F\x92\xBF\\x1B");
}

TEST(QuotedArgument, IsReadAgainAsItIs) {
    EXPECT_EQ(QuotedArgument(""), "\"\"");
    EXPECT_EQ(QuotedArgument("a b"), "\"a b\"");
    EXPECT_EQ(QuotedArgument("a\\b\\"), "\"a\\b\\\\\"");
    EXPECT_EQ(QuotedArgument("a\"b"), "\"a\\\"b\"");
    EXPECT_EQ(QuotedArgument("a\\\\\"b"), "\"a\\\\\\\\\\\"b\"");
    EXPECT_EQ(QuotedArgument("\\x\"\\\\"), "\"\\x\\\"\\\\\\\\\"");
}

TEST(ArgumentsIn, ACommandLineAreThoseBehindTheProgram) {
    EXPECT_EQ(ArgumentsIn(L"\"C:\\a b\\x.exe\" -a \"b c\" \"\" d\\\"e *"),
              (std::vector<std::string>{"-a", "b c", "", "d\"e", "*"}));
    EXPECT_EQ(ArgumentsIn(L"x.exe"), std::vector<std::string>());
}

TEST(QuoteInAPath, IsExplained) {
    EXPECT_EQ(ExplainQuoteIn("D:\\a b\" -x", 6),
              "D:\\a b\"... has a quote in it: a backslash before the closing quote, as in "
              "\"D:\\a b\\\", does that; leave it out.");
}

TEST(Numbers, HaveACommaAtEachThousand) {
    EXPECT_EQ(Grouped(0), "0");
    EXPECT_EQ(Grouped(999), "999");
    EXPECT_EQ(Grouped(1000), "1,000");
    EXPECT_EQ(Grouped(999999), "999,999");
    EXPECT_EQ(Grouped(1234567), "1,234,567");
}

TEST(Lists, HaveTheirOwnWordBeforeTheLast) {
    EXPECT_EQ(Listed({}, ", ", " and "), "");
    EXPECT_EQ(Listed({"a"}, ", ", " and "), "a");
    EXPECT_EQ(Listed({"a", "b"}, ", ", " and "), "a and b");
    EXPECT_EQ(Listed({"a", "b", "c", "d"}, ", ", " and "), "a, b, c and d");
    EXPECT_EQ(Counted(0, "file"), "0 files");
    EXPECT_EQ(Counted(1, "file"), "1 file");
    EXPECT_EQ(Counted(2, "file"), "2 files");
    EXPECT_EQ(Quoted("a"), "\"a\"");
    EXPECT_EQ(Quoted(Path("C:\\a")), "\"C:\\a\"");
}

// --- amounts

TEST(AmountsText, LeavesOutWhatIsNotKnown) {
    EXPECT_EQ(TextOf(Amounts{"Copying", 0, 0, 0, 0}, 0), "Copying: 0 files");
    EXPECT_EQ(TextOf(Amounts{"Looking", 1, 0, 0, 0}, 0), "Looking: 1 file");
    EXPECT_EQ(TextOf(Amounts{"Looking", 2, 0, 5, 0}, 1000), "Looking: 2 files, 5 bytes");
    EXPECT_EQ(TextOf(Amounts{"Copying", 0, 1, 0, 0}, 1000), "Copying: 0 of 1 file");
    EXPECT_EQ(TextOf(Amounts{"Copying", 3, 12, 0, 1}, 1000),
              "Copying: 3 of 12 files, 0 bytes of 1 byte, 0 bytes/s");
    EXPECT_EQ(TextOf(Amounts{"Copying", 20, 500, 45'600'000, 1'200'000'000}, 2000),
              "Copying: 20 of 500 files, 45.6 MB of 1.2 GB, 22.8 MB/s");
    EXPECT_EQ(TextOf(Amounts{"Copying", 1, 1, 7, 7}, 0),
              "Copying: 1 of 1 file, 7 bytes of 7 bytes, "
              "7.0 KB/s");
    EXPECT_EQ(TextOf(Amounts{"Copying", 1, 1, 9, 9}, 3),
              "Copying: 1 of 1 file, 9 bytes of 9 bytes, "
              "3.0 KB/s");
}

TEST(AmountsText, HasThreeDigitsOrSo) {
    const auto size = [](std::uint64_t bytes) {
        return TextOf(Amounts{"", 1, 0, bytes, 0}, 1).substr(sizeof ": 1 file, " - 1);
    };
    EXPECT_EQ(size(1), "1 byte");
    EXPECT_EQ(size(99), "99 bytes");
    EXPECT_EQ(size(999), "999 bytes");
    EXPECT_EQ(size(1000), "1.0 KB");
    EXPECT_EQ(size(1099), "1.0 KB");
    EXPECT_EQ(size(1100), "1.1 KB");
    EXPECT_EQ(size(99'999), "99.9 KB");
    EXPECT_EQ(size(100'000), "100 KB");
    EXPECT_EQ(size(999'999), "999 KB");
    EXPECT_EQ(size(1'000'000), "1.0 MB");
    EXPECT_EQ(size(999'999'999), "999 MB");
    EXPECT_EQ(size(1'000'000'000), "1.0 GB");
    EXPECT_EQ(size(1'000'000'000'000), "1.0 TB");
    EXPECT_EQ(size(12'345'000'000'000'000), "12345 TB");
}

// --- the other small ones

TEST(FailureForPrograms, NamesTheCommandIfThereIsOne) {
    EXPECT_EQ(FailureJson("create", 2, "It failed.").dump(),
              R"({"schema":1,"command":"create","exitCode":2,"error":"It failed."})");
    EXPECT_EQ(FailureJson("", 1, "x").dump(),
              R"({"schema":1,"command":null,"exitCode":1,"error":"x"})");
}

TEST(OutputForPrograms, IsIndented) {
    EXPECT_EQ(Printed({{"a", {{"b", 1}}}}), "{\n  \"a\": {\n    \"b\": 1\n  }\n}\n");
}

std::string HashOf(const std::vector<std::string>& pieces) {
    Sha256 hash;
    for (const std::string& piece : pieces)
        hash.Add(piece);
    return hash.Digits();
}

TEST(Sha256, IsThatOfTheStandard) {
    EXPECT_EQ(HashOf({}), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(HashOf({"a", "bc"}),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

void EndWithoutCryptography() {
    std::wstring asked;
    DWORD flags = 0;
    const Hook<decltype(&LoadLibraryExW)> none("LoadLibraryExW",
                                               [&](auto, LPCWSTR name, HANDLE, DWORD how) {
                                                   asked = name;
                                                   flags = how;
                                                   return HMODULE{};
                                               });
    try {
        HashOf({});
    } catch (const std::runtime_error& failure) {
        wchar_t folder[MAX_PATH] = {};
        GetSystemDirectoryW(folder, MAX_PATH);
        std::fputs(failure.what(), stderr);
        const bool isTheSystems = asked == folder + std::wstring(L"\\bcrypt.dll");
        std::exit(isTheSystems && flags == LOAD_WITH_ALTERED_SEARCH_PATH ? 0 : 1);
    }
}

TEST(Sha256DeathTest, NeedsTheLibraryOfTheSystem) {
    EXPECT_EXIT(EndWithoutCryptography(), testing::ExitedWithCode(0),
                "Windows computes no SHA-256 checksums\\.");
}

}  // namespace
}  // namespace launcher::test
