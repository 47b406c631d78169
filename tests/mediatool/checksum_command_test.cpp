// mediatool checksum: the lists that it writes, and when it writes none.

#include <windows.h>

#include <filesystem>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/files.h"
#include "mediatool/create/checksum.h"
#include "tests/mediatool/creating.h"
#include "tests/support/hook.h"
#include "tests/support/links.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

// The SHA-256 of "abc", as FIPS 180-4 gives it.
constexpr char kChecksumOfAbc[] =
    "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

class ChecksumCommandTest : public testing::Test {
  protected:
    mediatool::Checksums Write() const {
        mediatool::ChecksumRequest request;
        request.folders = {folder};
        request.force = force;
        request.progress = progress;
        return mediatool::WriteChecksums(request);
    }
    std::string Complaint() const {
        try {
            Write();
        } catch (const Refused& failure) {
            return failure.what();
        }
        return "none";
    }
    SampleMedia media{Layout::Siblings};
    std::string folder = media.Text();
    bool force = false;
    mediatool::TellAmounts progress = [](const mediatool::Amounts&) {};
};

TEST_F(ChecksumCommandTest, WritesAListIntoEveryVolumeThatIsFound) {
    media.Write("abc", "abc");
    EXPECT_EQ(Write().written.size(), 3u);
    EXPECT_THAT(ReadFile(FromUtf8(media.Text("SHA256SUMS"))),
                testing::HasSubstr(std::string(kChecksumOfAbc) + "  abc\n"));
    EXPECT_THAT(ReadFile(FromUtf8(media.Text("../3/SHA256SUMS"))), testing::HasSubstr("  3.txt\n"));
}

TEST_F(ChecksumCommandTest, WritesOverAListByForceOnly) {
    media.Write("../3/SHA256SUMS", "old");
    EXPECT_EQ(Complaint(), "\"" + media.Text("../3/SHA256SUMS") +
                               "\" is there already; --force writes over it.");
    EXPECT_FALSE(stdfs::exists(FromUtf8(media.Text("SHA256SUMS"))));
    force = true;
    EXPECT_EQ(Complaint(), "none");
    EXPECT_THAT(ReadFile(FromUtf8(media.Text("../3/SHA256SUMS"))), testing::HasSubstr("  3.txt\n"));
}

TEST_F(ChecksumCommandTest, TellsHowFarItIs) {
    std::vector<mediatool::Amounts> told;
    progress = [&](const mediatool::Amounts& amounts) { told.push_back(amounts); };
    const mediatool::Checksums checksums = Write();
    ASSERT_GT(told.size(), 1u);
    EXPECT_EQ(told.front().allFiles, checksums.files);
    EXPECT_EQ(told.front().allBytes, checksums.bytes);
    EXPECT_EQ(told.back().bytes, checksums.bytes);
}

// Nor the system's own folders at the root of a drive, nor what a run that was killed has left.
TEST(ChecksumCommand, ListsNothingThatALinkLeadsTo) {
    SampleMedia media;
    media.Write("data/a.bin").Write("data/mediatool-unfinished.tmp");
    media.Write("System Volume Information/b").Write("$recycle.bin/c").Write("data/$RECYCLE.BIN/d");
    const FolderLink link(FromUtf8(media.Text("link")), FromUtf8(media.Text("data")));
    const MappedDrive drive(FromUtf8(media.Text()));
    mediatool::ChecksumRequest request;
    request.folders = {ToUtf8(drive.Root())};
    mediatool::WriteChecksums(request);
    const std::string list = ReadFile(FromUtf8(media.Text("SHA256SUMS")));
    for (const std::string there : {"data/a.bin", "data/$RECYCLE.BIN/d"})
        EXPECT_THAT(list, testing::HasSubstr("  " + there + "\n"));
    for (const std::string left : {"unfinished", "System Volume", "$recycle.bin", "link"})
        EXPECT_THAT(list, testing::Not(testing::HasSubstr(left)));
}

TEST_F(ChecksumCommandTest, WritesNoListThatLacksAFolder) {
    media.Write("../2/data/part.bin", "part");
    const Hook<decltype(&FindFirstFileW)> denied(
        "FindFirstFileW", [](auto real, LPCWSTR pattern, auto data) -> HANDLE {
            if (!std::wstring(pattern).ends_with(L"\\2\\data\\*")) return real(pattern, data);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
    EXPECT_EQ(Complaint(), "\"" + media.Text("../2/data") + "\" cannot be listed: " +
                               mediatool::ErrorText(ERROR_ACCESS_DENIED) + ".");
    for (const char* list : {"SHA256SUMS", "../2/SHA256SUMS", "../3/SHA256SUMS"})
        EXPECT_FALSE(stdfs::exists(FromUtf8(media.Text(list)))) << list;
}

TEST_F(ChecksumCommandTest, RefusesAnUnfinishedSet) {
    media.Write("mediatool-unfinished.txt");
    EXPECT_EQ(Complaint(), "\"" + media.Text("mediatool-unfinished.txt") +
                               "\" says that the set is not finished.");
}

TEST_F(ChecksumCommandTest, FindsTheVolumesOfADriveFromEverywhere) {
    media.Rename("../2", "2").Rename("../3", "3");
    const MappedDrive drive(FromUtf8(media.Text()));
    folder = ToUtf8(drive.Root());
    EXPECT_EQ(Write().written,
              (std::vector<std::string>{folder + "SHA256SUMS", folder + "2\\SHA256SUMS",
                                        folder + "3\\SHA256SUMS"}));
}

// Old lists in the first two volumes; the third is what keeps the new ones from being written.
class UnwritableList : public ChecksumCommandTest {
  protected:
    UnwritableList() {
        media.Write("SHA256SUMS", "old").Write("../2/SHA256SUMS", "old");
        force = true;
        progress = [this](const mediatool::Amounts&) { wasRead = true; };
    }

    void ExpectNothingDone(const std::string& complaint) {
        EXPECT_THAT(complaint, testing::HasSubstr("3\\SHA256SUMS\" cannot be written: "));
        EXPECT_FALSE(wasRead);
        EXPECT_EQ(Media(), before);
    }
    Tree Media() const { return TreeBelow(media.Folder().Dir()); }

    bool wasRead = false;
    Tree before;
};

TEST_F(UnwritableList, OfAMediumThatIsReadOnly) {
    before = Media();
    std::string complaint;
    {
        const Hook<decltype(&CreateFileW)> readOnly(
            "CreateFileW", [](auto real, LPCWSTR name, auto... rest) -> HANDLE {
                if (!std::wstring(name).ends_with(L"\\3\\mediatool-unfinished.tmp"))
                    return real(name, rest...);
                SetLastError(ERROR_WRITE_PROTECT);
                return INVALID_HANDLE_VALUE;
            });
        complaint = Complaint();
    }
    ExpectNothingDone(complaint);
}

TEST_F(UnwritableList, ThatIsInUse) {
    media.Write("../3/SHA256SUMS", "old");
    before = Media();
    const FileHandle user(CreateFileW(ToWide(media.Text("../3/SHA256SUMS")).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(user);
    ExpectNothingDone(Complaint());
}

TEST_F(ChecksumCommandTest, LeavesAListThatComesToBeThereMeanwhile) {
    progress = [this](const mediatool::Amounts&) { media.Write("../2/SHA256SUMS", "theirs"); };
    EXPECT_THAT(Complaint(), testing::HasSubstr("2\\SHA256SUMS\" has come to be there meanwhile"));
    EXPECT_EQ(ReadFile(FromUtf8(media.Text("../2/SHA256SUMS"))), "theirs");
}

}  // namespace
}  // namespace launcher::test
