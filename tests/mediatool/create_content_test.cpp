// Lines of the content's own markers, what a dry run of create says, its progress, and checksums.

#include <windows.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "mediatool/create/checksum.h"
#include "mediatool/create/report.h"
#include "mediatool/media/checksums.h"
#include "tests/mediatool/creating.h"

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
    Create(request);
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
}

TEST_F(Content, ProgressHasTotalsFromTheFirstByte) {
    scratch.Write("one/big.bin", std::string(1000000, 'x'));
    scratch.Write("two/small.bin", "x");
    std::vector<mediatool::CreateProgress> told;
    request.progress = [&](const mediatool::CreateProgress& progress) { told.push_back(progress); };
    Create(request);
    ASSERT_GE(told.size(), 6u);
    EXPECT_FALSE(told[0].isWriting);
    EXPECT_EQ(told[1].allBytes, 1000001u) << "while the content is looked at";
    EXPECT_TRUE(told[2].isWriting);
    EXPECT_EQ(told[2].bytes, 0u);
    std::size_t within = 0;
    for (const mediatool::CreateProgress& progress : told) {
        if (!progress.isWriting) continue;
        EXPECT_EQ(progress.allFiles, 2u);
        EXPECT_EQ(progress.allBytes, 1000001u);
        within += progress.bytes > 0 && progress.bytes < 1000000 ? 1 : 0;
    }
    EXPECT_GE(within, 1u) << "inside a file";
    EXPECT_EQ(told.back().files, 2u);
    EXPECT_EQ(told.back().bytes, 1000001u);
}

TEST(CreateProgressText, HasTotalAndRate) {
    using mediatool::ProgressText;
    EXPECT_EQ(ProgressText({false, 0, 50000, 0, 1234567890}, 0), "Content: 50000 files, 1.2 GB");
    EXPECT_EQ(ProgressText({true, 20, 50000, 45600000, 1234567890}, 2000),
              "Copying: 20 of 50000 files, 45.6 MB of 1.2 GB, 22.8 MB/s");
    EXPECT_EQ(ProgressText({true, 0, 1, 0, 999}, 0),
              "Copying: 0 of 1 file, 0 bytes of 999 bytes, "
              "0 bytes/s");
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

TEST(ChecksumLine, IsWrittenAsSha256sumDoes) {
    using mediatool::ChecksumLine;
    EXPECT_EQ(ChecksumLine("00", "a b"), "00  a b\n");
    EXPECT_EQ(ChecksumLine("00", "a\\b\nc"), "\\00  a\\\\b\\nc\n");
}

class ChecksumCommandTest : public testing::Test {
  protected:
    mediatool::Checksums Write() const {
        mediatool::ChecksumRequest request;
        request.folders = {media.Text()};
        request.force = force;
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
    bool force = false;
};

TEST_F(ChecksumCommandTest, WritesAListIntoEveryVolumeThatIsFound) {
    media.Write("abc", "abc");
    EXPECT_EQ(Write().written.size(), 3u);
    EXPECT_THAT(ReadFile(FromUtf8(media.Text("SHA256SUMS"))),
                testing::HasSubstr(std::string(kOfAbc) + "  abc\n"));
    EXPECT_THAT(ReadFile(FromUtf8(media.Text("../3/SHA256SUMS"))), testing::EndsWith("  3.txt\n"));
}

TEST_F(ChecksumCommandTest, WritesOverAListByForceOnly) {
    media.Write("../3/SHA256SUMS", "old");
    EXPECT_THAT(Complaint(), testing::EndsWith("is there already; --force writes over it."));
    EXPECT_FALSE(stdfs::exists(FromUtf8(media.Text("SHA256SUMS"))));
    force = true;
    EXPECT_EQ(Complaint(), "none");
    EXPECT_THAT(ReadFile(FromUtf8(media.Text("../3/SHA256SUMS"))), testing::EndsWith("  3.txt\n"));
}

TEST_F(ChecksumCommandTest, RefusesAnUnfinishedSet) {
    media.Write("mediatool-unfinished.txt");
    EXPECT_THAT(Complaint(), testing::EndsWith("says that the set is not finished."));
}

}  // namespace
}  // namespace launcher::test
