// What validate says of a disc set by the lists of checksums in it.

#include <windows.h>

#include <filesystem>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/create/checksum.h"
#include "mediatool/media/checksums.h"
#include "tests/mediatool/validate/mistake_row.h"
#include "tests/support/hook.h"
#include "tests/support/links.h"

namespace launcher::test {
namespace {

// A set of three volumes side by side whose lists hold, until a test changes something.
class ListedSet : public testing::Test {
  protected:
    ListedSet() {
        media.Write("data/a.bin", "first").Write("../2/data/b.bin", "second");
        media.Write("../2/readme.txt", "the same").Write("../3/readme.txt", "the same");
        media.Write("../3/data/c.bin", "third");
        WriteLists();
    }

    void WriteLists() const {
        mediatool::ChecksumRequest request;
        request.folders = {media.Text()};
        request.force = true;
        mediatool::WriteChecksums(request);
    }

    // The findings of lists, each with its file and its level, in the order of the report.
    std::string Found() {
        std::string text;
        validation = media.Validate();
        for (const Finding& finding : validation.findings.Sorted())
            if (finding.id.starts_with("checksum-")) text += Line(finding);
        return text;
    }
    static std::string Line(const Finding& finding) {
        return LevelName(finding.level) + " " + finding.id + " " + finding.file + "\n";
    }

    // As Found() gives it.
    std::string Error(const std::string& id, const std::string& file) const {
        return "error " + id + " " + media.Text(file) + "\n";
    }
    std::string Warning(const std::string& id, const std::string& file) const {
        return "warning " + id + " " + media.Text(file) + "\n";
    }
    std::string WhatOfTheFirst() const { return validation.findings.Sorted().front().what; }

    SampleMedia media{Layout::Siblings};
    Validation validation;
};

TEST_F(ListedSet, HasNothingElseToSay) {
    EXPECT_EQ(Found(), "");
    EXPECT_EQ(Changes(validation, Layout::Siblings), "");
    EXPECT_GT(validation.verified.files, 10u);
    EXPECT_EQ(validation.verified.files, validation.verified.allFiles);
    EXPECT_EQ(validation.verified.bytes, validation.verified.allBytes);
}

TEST_F(ListedSet, IsNotReadWithoutContent) {
    media.Write("data/a.bin", "other");
    mediatool::ValidateRequest request;
    request.folders = {media.Text()};
    EXPECT_TRUE(Has(mediatool::Validate(request), "checksum-differs"));
    request.content = false;
    EXPECT_FALSE(Has(mediatool::Validate(request), "checksum-differs"));
    EXPECT_EQ(mediatool::Validate(request).verified.files, 0u);
}

TEST_F(ListedSet, TellsHowFarItIs) {
    std::vector<mediatool::Amounts> told;
    mediatool::ValidateRequest request;
    request.folders = {media.Text()};
    request.verifying = [&](const mediatool::Amounts& amounts) { told.push_back(amounts); };
    const mediatool::Amounts verified = mediatool::Validate(request).verified;
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.front().allBytes, verified.bytes);
    EXPECT_EQ(told.back().bytes, verified.bytes);
}

TEST_F(ListedSet, HasADamagedFile) {
    media.Write("../2/data/b.bin", "SECOND");
    EXPECT_EQ(Found(), Error("checksum-differs", "..\\2\\data\\b.bin"));
}

TEST_F(ListedSet, HasAFileThatIsCutOff) {
    media.Write("../2/data/b.bin", "sec");
    EXPECT_EQ(Found(), Error("checksum-differs", "..\\2\\data\\b.bin"));
}

TEST_F(ListedSet, LacksAFile) {
    media.Remove("../3/data/c.bin");
    EXPECT_EQ(Found(), Error("checksum-file-missing", "..\\3\\data\\c.bin"));
}

TEST_F(ListedSet, HasAFileMore) {
    media.Write("data/new.bin");
    EXPECT_EQ(Found(), Warning("checksum-file-unlisted", "data\\new.bin"));
}

TEST_F(ListedSet, KnowsAFileInOtherCapitals) {
    media.Rename("data/a.bin", "data/x").Rename("data/x", "data/A.bin");
    EXPECT_EQ(Found(), "");
}

TEST_F(ListedSet, TellsOfThousandsInAFewLines) {
    for (int i = 0; i < 7; ++i)
        media.Write("data/" + std::to_string(i) + ".bin", "x");
    WriteLists();
    for (int i = 0; i < 7; ++i)
        media.Write("data/" + std::to_string(i) + ".bin", "y");
    const std::string found = Found();
    EXPECT_EQ(std::ranges::count(found, '\n'), 6) << found;
    EXPECT_EQ(validation.findings.Sorted()[5].what,
              "2 more files are not those of the list of checksums.");
    ExpectListed(validation, Layout::Siblings);
}

// As long as "1 more" would be.
TEST_F(ListedSet, TellsTheLastOneToo) {
    for (int i = 0; i < 6; ++i)
        media.Write("data/" + std::to_string(i) + ".bin", "x");
    const std::string found = Found();
    EXPECT_EQ(std::ranges::count(found, '\n'), 6) << found;
    EXPECT_THAT(found, testing::EndsWith(Warning("checksum-file-unlisted", "data\\5.bin")));
}

TEST_F(ListedSet, TellsOfThousandsThatCannotBeReadInAFewLines) {
    for (int i = 0; i < 8; ++i)
        media.Write("data/" + std::to_string(i) + ".bin", std::string(1000, 'x'));
    WriteLists();
    const Hook<decltype(&::ReadFile)> broken("ReadFile",
                                             [](auto real, HANDLE file, auto... rest) -> BOOL {
                                                 LARGE_INTEGER length{};
                                                 GetFileSizeEx(file, &length);
                                                 if (length.QuadPart != 1000)
                                                     return real(file, rest...);
                                                 SetLastError(ERROR_CRC);
                                                 return FALSE;
                                             });
    const std::string found = Found();
    EXPECT_EQ(std::ranges::count(found, '\n'), 6) << found;
    EXPECT_EQ(validation.findings.Sorted()[5].what, "3 more files cannot be read to their end.");
    ExpectListed(validation, Layout::Siblings);
}

TEST_F(ListedSet, HasAFileThatStopsInTheMiddle) {
    media.Write("../2/data/b.bin", std::string(1000, 'x'));
    WriteLists();
    int reads = 0;
    const Hook<decltype(&::ReadFile)> broken(
        "ReadFile", [&reads](auto real, HANDLE file, LPVOID data, DWORD size, auto... rest) {
            LARGE_INTEGER length{};
            GetFileSizeEx(file, &length);
            if (length.QuadPart != 1000 || ++reads < 2) return real(file, data, size, rest...);
            SetLastError(ERROR_CRC);
            return FALSE;
        });
    EXPECT_EQ(Found(), Error("checksum-file-unreadable", "..\\2\\data\\b.bin"));
}

TEST_F(ListedSet, HasAListThatCannotBeRead) {
    const FileHandle lock(CreateFileW(ToWide(media.Text("../2/SHA256SUMS")).c_str(), GENERIC_READ,
                                      0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(Found(), Error("checksum-list-unreadable", "..\\2\\SHA256SUMS"));
}

// What was read of it is no list.
TEST_F(ListedSet, HasAListThatBreaksOff) {
    media.Write("../2/data/another.bin", "x");  // no other list has this length
    WriteLists();
    const auto size = std::filesystem::file_size(FromUtf8(media.Text("../2/SHA256SUMS")));
    int reads = 0;
    const Hook<decltype(&::ReadFile)> broken(
        "ReadFile", [&](auto real, HANDLE file, LPVOID data, DWORD wanted, auto... rest) -> BOOL {
            LARGE_INTEGER length{};
            GetFileSizeEx(file, &length);
            if (static_cast<std::uintmax_t>(length.QuadPart) != size)
                return real(file, data, wanted, rest...);
            if (++reads == 1) return real(file, data, 100, rest...);
            SetLastError(ERROR_CRC);
            return FALSE;
        });
    EXPECT_EQ(Found(), Error("checksum-list-unreadable", "..\\2\\SHA256SUMS"));
    EXPECT_EQ(reads, 2);
}

TEST_F(ListedSet, HasAListThatIsEmpty) {
    for (const char* const text : {"", "\r\n\n", "\xEF\xBB\xBF"}) {
        media.Write("../2/SHA256SUMS", text);
        EXPECT_EQ(Found(), Error("checksum-list-malformed", "..\\2\\SHA256SUMS"));
        EXPECT_EQ(WhatOfTheFirst(), "The list of checksums is empty.");
    }
}

TEST_F(ListedSet, HasAListThatIsNone) {
    media.Write("../2/SHA256SUMS", "what?\n");
    EXPECT_EQ(Found(), Error("checksum-list-malformed", "..\\2\\SHA256SUMS"));
    ExpectListed(validation, Layout::Siblings);
}

TEST_F(ListedSet, LacksAList) {
    media.Remove("../3/SHA256SUMS");
    EXPECT_EQ(Found(), Warning("checksum-list-missing", "..\\3"));
    media.Remove("../2/SHA256SUMS").Remove("SHA256SUMS");
    EXPECT_EQ(Found(), "") << "without any, nothing is said";
}

// The files and the lists have changed places, the folders' markers have not.
TEST_F(ListedSet, HasFoldersThatChangedPlacesUnderTheirMarkers) {
    media.Rename("../2", "../x").Rename("../3", "../2").Rename("../x", "../3");
    media.Rename("../2/3.txt", "../2/2.txt").Rename("../3/2.txt", "../3/3.txt");
    EXPECT_EQ(Found(), Error("checksum-list-wrong-volume", "..\\2\\SHA256SUMS") +
                           Error("checksum-list-wrong-volume", "..\\3\\SHA256SUMS"));
    EXPECT_EQ(
        WhatOfTheFirst(),
        "The list of checksums names 3.txt and fits the files here, but the marker is 2.txt.");
    EXPECT_EQ(validation.verified.files, validation.verified.allFiles) << "each is read once";
}

// Which of the two is the folder's own nobody can tell.
TEST_F(ListedSet, HasADamagedMarkerBesideAnother) {
    media.Write("../2/2.txt", "MTBDIR=SET\r\nchanged\r\n").Marker("../2/3.txt");
    EXPECT_EQ(Found(), Error("checksum-differs", "..\\2\\2.txt") +
                           Warning("checksum-file-unlisted", "..\\2\\3.txt"));
}

TEST_F(ListedSet, HasADamagedFileBesideAVolumeWithTheSameNames) {
    media.Remove("../2/data").Remove("../3/data");
    WriteLists();
    media.Write("../2/content.bin", "damaged");
    EXPECT_EQ(Found(), Error("checksum-differs", "..\\2\\content.bin"));
}

// Other programs list what is below a link.
TEST_F(ListedSet, KnowsAFileBelowALink) {
    media.Write("../../target/x.bin", "x");
    const FolderLink link(FromUtf8(media.Text("linked")), FromUtf8(media.Text("../../target")));
    const std::string hash = mediatool::ChecksumOf(Path(media.Text("../../target/x.bin")), {});
    const std::string list = ReadFile(FromUtf8(media.Text("SHA256SUMS")));
    media.Write("SHA256SUMS", list + mediatool::ChecksumLine(hash, "linked/x.bin"));
    EXPECT_EQ(Found(), "");
    media.Write("../../target/x.bin", "y");
    EXPECT_EQ(Found(), Error("checksum-differs", "linked\\x.bin"));
}

TEST_F(ListedSet, HasListsThatChangedPlaces) {
    media.Rename("../2/SHA256SUMS", "../x").Rename("../3/SHA256SUMS", "../2/SHA256SUMS");
    media.Rename("../x", "../3/SHA256SUMS");
    EXPECT_EQ(Found(), Error("checksum-list-wrong-volume", "..\\2\\SHA256SUMS") +
                           Error("checksum-list-wrong-volume", "..\\3\\SHA256SUMS"));
    EXPECT_EQ(WhatOfTheFirst(), "The list of checksums does not fit here, but fits the files in " +
                                    media.Text("..\\3") + ".");
}

TEST_F(ListedSet, HasAVolumeThatIsACopyOfAnother) {
    std::filesystem::remove_all(FromUtf8(media.Text("../3")));
    std::filesystem::copy(FromUtf8(media.Text("../2")), FromUtf8(media.Text("../3")),
                          std::filesystem::copy_options::recursive);
    media.Rename("../3/2.txt", "../3/3.txt");
    EXPECT_EQ(Found(), Error("checksum-list-wrong-volume", "..\\3\\SHA256SUMS"));
    EXPECT_EQ(
        WhatOfTheFirst(),
        "The list of checksums names 2.txt and fits the files here, but the marker is 3.txt.");
}

TEST_F(ListedSet, HasAnEmptyVolume) {
    media.Remove("../3/data/c.bin").Remove("../3/readme.txt");
    EXPECT_EQ(Found(), Error("checksum-file-missing", "..\\3\\data\\c.bin") +
                           Error("checksum-file-missing", "..\\3\\readme.txt"));
}

TEST_F(ListedSet, IsNotComparedWhileItIsUnfinished) {
    media.Write("data/a.bin", "other").Write("mediatool-unfinished.txt");
    EXPECT_EQ(Found(), "");
    EXPECT_TRUE(Has(validation, "set-unfinished"));
}

TEST_F(ListedSet, HasAFolderThatCannotBeListed) {
    const Hook<decltype(&FindFirstFileW)> denied(
        "FindFirstFileW", [](auto real, LPCWSTR pattern, auto data) -> HANDLE {
            if (!std::wstring(pattern).ends_with(L"\\2\\data\\*")) return real(pattern, data);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
    EXPECT_EQ(Found(), "");
    EXPECT_TRUE(Has(validation, "folder-unreadable"));
    ExpectListed(validation, Layout::Siblings);
}

TEST(FolderWithoutAList, NeedNotBeRead) {
    SampleMedia media;
    media.MakeDir("data");
    const Hook<decltype(&FindFirstFileW)> denied(
        "FindFirstFileW", [](auto real, LPCWSTR pattern, auto data) -> HANDLE {
            if (!std::wstring(pattern).ends_with(L"\\1\\data\\*")) return real(pattern, data);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
    EXPECT_EQ(Changes(media.Validate()), "");
}

TEST(OneListedFolder, HasOneListForAllVolumes) {
    SampleMedia media(Layout::OneFolder);
    mediatool::ChecksumRequest request;
    request.folders = {media.Text()};
    EXPECT_EQ(mediatool::WriteChecksums(request).written.size(), 1u);
    EXPECT_EQ(Changes(media.Validate(), Layout::OneFolder), "");
    media.Marker("2.txt", "OTHER");
    EXPECT_TRUE(Has(media.Validate(), "checksum-differs"));
}

}  // namespace
}  // namespace launcher::test
