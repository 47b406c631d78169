// Lines of the content's own markers, what a dry run of create says, its progress, and checksums.

#include <windows.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/files.h"
#include "mediatool/create/create.h"
#include "mediatool/media/checksums.h"
#include "tests/mediatool/creating.h"
#include "tests/support/hook.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

// The SHA-256 of nothing and of "abc", as FIPS 180-4 gives them.
constexpr char kOfNothing[] = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";
constexpr char kOfAbc[] = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

class Content : public Creating {
  protected:
    Content() {
        scratch.MakeDir("one");
        scratch.MakeDir("two");
        request.from = {scratch.Text("one"), scratch.Text("two")};
    }
    std::string Written(const char* name) const { return ReadFile(FromUtf8(scratch.Text(name))); }
};

TEST_F(Content, OtherLinesOfAMarkerStay) {
    scratch.Write("one/1.txt", "Disc 1\r\nMTBDIR=OLD\r\nMTBDIR=OLDER\nCopyright");
    scratch.Write("two/2.txt", "MTBDIR=OLD");
    for (const mediatool::CreatedFile& file : Create(request).files)
        EXPECT_EQ(file.size, stdfs::file_size(FromUtf8(file.path))) << file.path;
    EXPECT_EQ(Written("out\\1\\1.txt"), "Disc 1\r\nMTBDIR=SET\r\nMTBDIR=SET\nCopyright");
    EXPECT_EQ(Written("out\\2\\2.txt"), "MTBDIR=SET\r\n");
}

TEST_F(Content, OtherLinesOfACountFileStay) {
    scratch.Write("one/inst/volumes.txt", " 5 \nof them\n");
    Create(request);
    EXPECT_EQ(Written("out\\1\\inst\\volumes.txt"), "2\nof them\n");
}

TEST_F(Content, ACountFileWithoutACountIsReplacedByForceOnly) {
    for (const std::string text : {"Volumes: 2\n", "\n2\n", "2 discs\n",
                                   "\xEF\xBB\xBF"
                                   "2\n"}) {
        const std::string file = scratch.Write("one/inst/volumes.txt", text);
        request.force = false;
        EXPECT_EQ(Complaint(), "refused: \"" + file +
                                   "\" has lines that would be lost: its first is not a number; "
                                   "--force writes a new count file in its place.");
        EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
        request.force = true;
        EXPECT_EQ(Complaint(), "none");
        EXPECT_EQ(Written("out\\1\\inst\\volumes.txt"), "2\r\n");
        stdfs::remove_all(FromUtf8(scratch.Text("out")));
    }
    scratch.Write("one/inst/volumes.txt", " \r\n");
    request.force = false;
    EXPECT_EQ(Complaint(), "none") << "there is nothing to lose";
}

TEST_F(Content, ATextOfMoreThan64KiBIsNoCountFile) {
    constexpr std::size_t kLongest = 65536;
    const std::string file =
        scratch.Write("one/inst/volumes.txt", "3\n" + std::string(kLongest - 1, 'x'));
    EXPECT_EQ(Complaint(),
              "wrong use: \"" + file + "\" is too long for a text of one or a few lines.");
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
    scratch.Write("one/inst/volumes.txt", "3\n" + std::string(kLongest - 2, 'x'));
    EXPECT_EQ(Complaint(), "none");
    EXPECT_EQ(Written("out\\1\\inst\\volumes.txt"), "2\n" + std::string(kLongest - 2, 'x'));
}

TEST_F(Content, ACountFileThatIsInUseIsNotPassedOver) {
    const std::string file = scratch.Write("one/inst/volumes.txt", "3\n");
    const FileHandle user(CreateFileW(ToWide(file).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(user);
    EXPECT_EQ(Complaint(), "refused: \"" + file + "\" cannot be read: " +
                               mediatool::ErrorText(ERROR_SHARING_VIOLATION) + ".");
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
}

// To the launcher a carriage return alone is no line end: all of it is the identifier.
TEST_F(Content, LinesAfterCarriageReturnsAloneAreLostByForceOnly) {
    const std::string file = scratch.Write("two/2.txt", "Set\nMTBDIR=OLD\rDisc 2\r\n");
    EXPECT_EQ(Complaint(), "refused: \"" + file +
                               "\" has lines that would be lost: they end with carriage returns "
                               "alone; --force writes a new marker in its place.");
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
    request.force = true;
    EXPECT_EQ(Complaint(), "none");
    EXPECT_EQ(Written("out\\2\\2.txt"), "MTBDIR=SET\r\n");
    scratch.Write("two/2.txt", "MTBDIR=OLD \r\r\nDisc 2");
    request.from = {scratch.Text("one"), scratch.Text("two")};
    EXPECT_EQ(Complaint(), "none") << "there is nothing to lose";
    EXPECT_EQ(Written("out\\2\\2.txt"), "MTBDIR=SET\r\nDisc 2");
}

// A link to a file is listed with a size and time of its own. Wine lists what it leads to.
TEST_F(Content, ALinkIsCopiedAsWhatItLeadsTo) {
    scratch.Write("one/a.bin", "123");
    {
        const Hook<decltype(&FindNextFileW)> listed(
            "FindNextFileW", [](auto real, HANDLE search, auto data) -> BOOL {
                const BOOL found = real(search, data);
                if (!found || std::wstring(data->cFileName) != L"a.bin") return found;
                data->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
                data->nFileSizeLow = 0;
                data->ftLastWriteTime = {0, 1};
                return found;
            });
        {
            const Hook<decltype(&CreateFileW)> broken(
                "CreateFileW", [](auto real, LPCWSTR name, auto... rest) -> HANDLE {
                    if (!std::wstring(name).ends_with(L"\\a.bin")) return real(name, rest...);
                    SetLastError(ERROR_FILE_NOT_FOUND);
                    return INVALID_HANDLE_VALUE;
                });
            EXPECT_EQ(Complaint(),
                      "refused: \"" + scratch.Text("one\\a.bin") +
                          "\" cannot be read: " + mediatool::ErrorText(ERROR_FILE_NOT_FOUND) + ".");
        }
        EXPECT_EQ(Create(request).copiedBytes, 3u);
    }
    EXPECT_EQ(stdfs::last_write_time(FromUtf8(scratch.Text("out\\1\\a.bin"))),
              stdfs::last_write_time(FromUtf8(scratch.Text("one\\a.bin"))));
}

// Of the attributes, those that people set; the file system's own are none of a copy's.
TEST_F(Content, ACopyHasTheAttributesOfItsSource) {
    scratch.Write("one/a.bin", "123");
    std::vector<DWORD> given;
    const Hook<decltype(&FindNextFileW)> listed(
        "FindNextFileW", [](auto real, HANDLE search, auto data) -> BOOL {
            const BOOL found = real(search, data);
            if (found && std::wstring(data->cFileName) == L"a.bin") data->dwFileAttributes = 0x3827;
            return found;
        });
    const Hook<decltype(&CreateFileW)> made(
        "CreateFileW", [&given](auto real, LPCWSTR name, auto access, auto share, auto security,
                                auto how, DWORD attributes, HANDLE like) {
            if (!std::wstring(name).ends_with(L".tmp"))
                return real(name, access, share, security, how, attributes, like);
            given.push_back(attributes);
            return real(name, access, share, security, how, FILE_ATTRIBUTE_NORMAL, like);
        });
    Create(request);
    ASSERT_FALSE(given.empty());
    EXPECT_EQ(given.front(), static_cast<DWORD>(FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                                FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE));
}

class Steps : public Content {
  protected:
    Steps() {
        scratch.Write("one/a.bin", "12345");
        scratch.Write("two/b.bin", "123");
        request.checksums = true;
        request.progress = [this](const mediatool::Amounts& amounts) {
            told.push_back(std::string(amounts.what) + " " + std::to_string(amounts.files) + "/" +
                           std::to_string(amounts.allFiles) + " " + std::to_string(amounts.bytes) +
                           "/" + std::to_string(amounts.allBytes));
        };
    }
    std::vector<std::string> told;
};

TEST_F(Steps, OfANewSetAreTold) {
    scratch.Write("out/1/1.txt", "old");
    request.force = true;
    Create(request);
    EXPECT_THAT(
        told, testing::ElementsAre(
                  "Content 1/0 5/0", "Content 2/0 8/0", "Comparing 1/7 0/0", "Comparing 2/7 0/0",
                  "Comparing 3/7 0/0", "Comparing 4/7 0/0", "Comparing 5/7 0/0",
                  "Comparing 6/7 0/0", "Comparing 7/7 0/0", "Checking 1/2 0/0", "Checking 2/2 0/0",
                  // The two copies,
                  "Copying 0/2 0/8", "Copying 0/2 5/8", "Copying 1/2 5/8", "Copying 1/2 8/8",
                  // the count file and the markers,
                  "Copying 2/2 8/8", "Copying 2/2 8/8", "Copying 2/2 8/8",
                  // and the list of each volume, for which the markers are read.
                  "Copying 2/2 8/8", "Checksums 1/0 12/0", "Checksums 2/0 15/0", "Copying 2/2 8/8",
                  "Checksums 3/0 27/0"));
}

TEST_F(Steps, OfARunThatGoesOnAreThoseThatAreLeft) {
    Create(request);
    stdfs::remove(FromUtf8(scratch.Text("out\\2\\b.bin")));
    scratch.Write("out/1/mediatool-unfinished.txt");
    told.clear();
    Create(request);
    EXPECT_THAT(told,
                testing::ElementsAre("Content 1/0 5/0", "Content 2/0 8/0",
                                     // Both a.bin are read,
                                     "Comparing 0/7 0/0", "Comparing 0/7 0/0", "Comparing 1/7 0/0",
                                     "Comparing 2/7 0/0", "Comparing 3/7 0/0", "Comparing 4/7 0/0",
                                     "Comparing 5/7 0/0", "Comparing 6/7 0/0", "Comparing 7/7 0/0",
                                     // and it stays; b.bin is copied,
                                     "Copying 0/1 0/3", "Copying 0/1 0/3", "Copying 0/1 3/3",
                                     // the count file and the markers stay,
                                     "Copying 1/1 3/3", "Copying 1/1 3/3", "Copying 1/1 3/3",
                                     // and are all that is read for the lists.
                                     "Copying 1/1 3/3", "Checksums 1/0 12/0", "Checksums 2/0 15/0",
                                     "Copying 1/1 3/3", "Checksums 3/0 27/0"));
}

TEST_F(Content, ADryRunSaysAllAndChangesNothing) {
    scratch.Write("one/a.bin", "12345");
    scratch.Write("two/b.bin", "123");
    scratch.Write("out/2/2.txt", "old");
    request.isDry = true;
    const Tree before = TreeBelow(scratch.Dir());
    EXPECT_THAT(Complaint(), testing::EndsWith("is there already; --force writes over it."));
    request.force = true;
    const Creation creation = Create(request);
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
    EXPECT_EQ(mediatool::TextOfDry(creation),
              "2 volumes (siblings), nothing is changed:\n"
              "  copy     " +
                  scratch.Text("out\\1\\a.bin") +
                  "\n"
                  "  copy     " +
                  scratch.Text("out\\2\\b.bin") +
                  "\n"
                  "  write    " +
                  scratch.Text("out\\1\\inst\\volumes.txt") +
                  "\n"
                  "  write    " +
                  scratch.Text("out\\1\\1.txt") +
                  "\n"
                  "  replace  " +
                  scratch.Text("out\\2\\2.txt") +
                  "\n"
                  "copy: 2 files, 8 bytes\n"
                  "replace: 1 file, 12 bytes\n"
                  "write: 2 files, 15 bytes\n");
    const mediatool::Json json = mediatool::JsonOfDry(creation, request);
    EXPECT_EQ(json["files"][0]["source"], scratch.Text("one\\a.bin"));
    EXPECT_EQ(json["totals"]["copy"]["bytes"], 8);
    EXPECT_EQ(json["outerId"], mediatool::Json());
}

// On a network share, each look costs as much as a small file.
TEST_F(Content, IsCopiedWithOneLookAtItsFolder) {
    int looks = 0;
    scratch.MakeDir("one/data");
    const Hook<decltype(&GetFileAttributesExW)> look(
        "GetFileAttributesExW", [&looks](auto real, LPCWSTR name, auto... rest) {
            looks += std::wstring_view(name).ends_with(L"\\1\\data") ? 1 : 0;
            return real(name, rest...);
        });
    std::vector<int> counts;
    for (const char* file : {"one/data/a.bin", "one/data/b.bin", "one/data/c.bin"}) {
        scratch.Write(file, "x");
        request.out = scratch.Text("out" + std::to_string(counts.size()));
        looks = 0;
        Create(request);
        counts.push_back(looks);
    }
    EXPECT_THAT(counts, testing::Each(counts.front()));
    EXPECT_GT(counts.front(), 0);
}

TEST_F(Content, ProgressHasTotalsFromTheFirstByte) {
    scratch.Write("one/big.bin", std::string(1000000, 'x'));
    scratch.Write("two/small.bin", "x");
    request.force = true;
    std::map<std::string, std::vector<mediatool::Amounts>> told;
    request.progress = [&](const mediatool::Amounts& amounts) {
        told[amounts.what].push_back(amounts);
    };
    Create(request);
    ASSERT_EQ(told["Content"].size(), 2u) << "one for each file that is looked at";
    EXPECT_EQ(told["Content"].back().bytes, 1000001u);
    ASSERT_EQ(told["Comparing"].size(), 5u) << "with the count file and the markers";
    EXPECT_EQ(told["Comparing"].back().files, told["Comparing"].front().allFiles);
    EXPECT_FALSE(told.contains("Checking")) << "nothing is written over";
    const std::vector<mediatool::Amounts>& copying = told["Copying"];
    EXPECT_EQ(copying.front().bytes, 0u);
    for (const mediatool::Amounts& amounts : copying) {
        EXPECT_EQ(amounts.allFiles, 2u);
        EXPECT_EQ(amounts.allBytes, 1000001u);
    }
    EXPECT_TRUE(std::ranges::any_of(copying, [](const mediatool::Amounts& amounts) {
        return amounts.bytes > 0 && amounts.bytes < 1000000;
    })) << "inside a file";
    EXPECT_EQ(copying.back().files, 2u);
    EXPECT_EQ(copying.back().bytes, 1000001u);
}

TEST(AmountsText, HasTotalAndRateOnceTheyAreKnown) {
    using mediatool::TextOf;
    EXPECT_EQ(TextOf({"Content", 50000, 0, 1234567890, 0}, 0), "Content: 50000 files, 1.2 GB");
    EXPECT_EQ(TextOf({"Comparing", 1, 3, 0, 0}, 0), "Comparing: 1 of 3 files");
    EXPECT_EQ(TextOf({"Copying", 20, 50000, 45600000, 1234567890}, 2000),
              "Copying: 20 of 50000 files, 45.6 MB of 1.2 GB, 22.8 MB/s");
    EXPECT_EQ(TextOf({"Copying", 0, 1, 0, 999}, 0),
              "Copying: 0 of 1 file, 0 bytes of 999 bytes, 0 bytes/s");
    EXPECT_EQ(TextOf({"Copying", 1, 2, 1000, 123456789}, 0),
              "Copying: 1 of 2 files, 1.0 KB of 123 MB, 1.0 MB/s");
}

TEST_F(Content, ChecksumsAreAListInEachVolume) {
    request.checksums = true;
    scratch.Write("one/data/\xC3\xA4.bin", "abc");
    scratch.Write("one/empty.bin");
    scratch.Write("one/SHA256SUMS", "an old list");
    scratch.Write("out/1/setup.exe", "abc");
    const Creation creation = Create(request);
    EXPECT_THAT(creation.checksums, testing::ElementsAre(scratch.Text("out\\1\\SHA256SUMS"),
                                                         scratch.Text("out\\2\\SHA256SUMS")));
    const std::string list = Written("out\\1\\SHA256SUMS");
    for (const std::string& line :
         {std::string(kOfAbc) + "  data/\xC3\xA4.bin\n", std::string(kOfNothing) + "  empty.bin\n",
          std::string(kOfAbc) + "  setup.exe\n"})
        EXPECT_THAT(list, testing::HasSubstr(line));
    EXPECT_EQ(std::ranges::count(list, '\n'), 5) << "with the count file and the marker\n" << list;
    EXPECT_THAT(Written("out\\2\\SHA256SUMS"), testing::EndsWith("  2.txt\n"));
}

TEST_F(Content, ChecksumsOfOneFolderAreOneList) {
    request.checksums = true;
    request.layout = Layout::OneFolder;
    EXPECT_EQ(Create(request).checksums.size(), 1u);
    EXPECT_EQ(std::ranges::count(Written("out\\SHA256SUMS"), '\n'), 3);
}

TEST_F(Content, AListThatIsThereIsWrittenOverByForceOrWhenTheSetGoesOn) {
    const auto refusal = [](const std::string& file) {
        return "refused: \"" + file + "\" is there already; --force writes over it.";
    };
    request.checksums = true;
    EXPECT_EQ(Complaint(), "none");
    for (const char* file : {"inst\\volumes.txt", "1.txt"})
        stdfs::remove(FromUtf8(scratch.Text("out\\1\\") + file));
    stdfs::remove_all(FromUtf8(scratch.Text("out\\2")));
    EXPECT_EQ(Complaint(), refusal(scratch.Text("out\\1\\SHA256SUMS")));
    scratch.Write("out/1/mediatool-unfinished.txt");
    const std::string other = scratch.Write("out/1/1.txt", "old");
    EXPECT_EQ(Complaint(), refusal(other));
    stdfs::remove(FromUtf8(other));
    EXPECT_EQ(Complaint(), "none");
}

using ContentDeathTest = Content;

// A process asks for the library once.
TEST_F(ContentDeathTest, IsCopiedWithoutChecksumsWhereWindowsComputesNone) {
    const auto copyAndExit = [this] {
        scratch.Write("one/a.bin", "123");
        std::string complaint;
        {
            const Hook<decltype(&LoadLibraryExW)> none("LoadLibraryExW",
                                                       [](auto&&...) { return HMODULE{}; });
            complaint = Complaint();
        }
        RemoveAll(scratch.Dir());
        std::exit(complaint == "none" ? 0 : 1);
    };
    EXPECT_EXIT(copyAndExit(), testing::ExitedWithCode(0), "");
}

// It would say of the new markers that they are damaged.
TEST_F(Content, AListOfOtherChecksumsIsNeitherCopiedNorLeft) {
    const std::string inContent = scratch.Write("one/SHA256SUMS", "old");
    EXPECT_EQ(Complaint(), "refused: \"" + inContent +
                               "\" would not hold for the new set; --checksums writes it anew.");
    stdfs::remove(FromUtf8(inContent));
    const std::string there = scratch.Write("out/2/SHA256SUMS", "old");
    request.force = true;
    EXPECT_EQ(Complaint(), "refused: \"" + there +
                               "\" would not hold for the new set; --checksums writes it anew.");
    request.checksums = true;
    EXPECT_EQ(Complaint(), "none");
    EXPECT_THAT(Written("out\\2\\SHA256SUMS"), testing::EndsWith("  2.txt\n"));
}

// A name with all that sha256sum escapes.
TEST(ChecksumLine, IsWrittenAsSha256sumDoesAndReadAgain) {
    using mediatool::ChecksumLine;
    EXPECT_EQ(ChecksumLine(kOfAbc, "a b"), std::string(kOfAbc) + "  a b\n");
    const std::string name = "a\\b\nc\rd";
    const std::string line = ChecksumLine(kOfAbc, name);
    EXPECT_EQ(line, "\\" + std::string(kOfAbc) + "  a\\\\b\\nc\\rd\n");
    const mediatool::ChecksumList list = mediatool::ParseChecksums(line);
    ASSERT_EQ(list.files.size(), 1u);
    EXPECT_EQ(list.files.front().name, name);
    EXPECT_EQ(list.files.front().hash, kOfAbc);
    EXPECT_EQ(list.badLine, 0u);
}

TEST(ChecksumList, OfOtherProgramsIsRead) {
    std::string capitals = kOfAbc;
    std::ranges::transform(capitals, capitals.begin(),
                           [](char c) { return static_cast<char>(std::toupper(c)); });
    const mediatool::ChecksumList list =
        mediatool::ParseChecksums("\xEF\xBB\xBF" + capitals + " *a\r\n\r\n" + kOfAbc + "  ./b/c");
    ASSERT_EQ(list.files.size(), 2u);
    EXPECT_EQ(list.files[0].name, "a");
    EXPECT_EQ(list.files[0].hash, kOfAbc);
    EXPECT_EQ(list.files[1].name, "b/c");
    EXPECT_EQ(list.badLine, 0u);
}

TEST(ChecksumList, TellsItsFirstBadLine) {
    const std::string good = std::string(kOfAbc) + "  a\n";
    for (const std::string& bad :
         {std::string("text"), std::string(kOfAbc), std::string(kOfAbc) + "  ",
          std::string(kOfAbc) + " -a", std::string(kOfAbc).replace(63, 1, "g") + "  a"}) {
        const mediatool::ChecksumList list =
            mediatool::ParseChecksums(good + bad + "\nmore\n" + good);
        EXPECT_EQ(list.badLine, 2u) << bad;
        EXPECT_EQ(list.files.size(), 2u) << bad;
    }
}

}  // namespace
}  // namespace launcher::test
