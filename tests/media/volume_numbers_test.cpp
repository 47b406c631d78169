#include "media/volume_numbers.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <climits>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "fs/environment.h"
#include "fs/file_type.h"
#include "media/volumes.h"
#include "tests/support/hook.h"
#include "tests/support/options.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Numbers = std::vector<VolumeNumber>;

Numbers Visited(const Path& folder, VolumeNumber first, VolumeNumber last,
                const std::string& suffix = ".txt") {
    Numbers numbers;
    ForEachVolumeNumber(folder, first, last, suffix,
                        [&numbers](VolumeNumber number) { numbers.push_back(number); });
    return numbers;
}

class VolumeNumbersTest : public testing::Test {
  protected:
    Path Folder() const { return Path(folder_.Text()); }
    void Write(const std::string& name) const { folder_.Write(name, ""); }

    const test::TemporaryFolder folder_;
};

TEST_F(VolumeNumbersTest, OfAnOrdinaryMediaAreAllVisitedWithoutAListing) {
    int listings = 0;
    const test::Hook<decltype(&FindFirstFileW)> hook("FindFirstFileW",
                                                     [&listings](auto real, auto&&... arguments) {
                                                         ++listings;
                                                         return real(arguments...);
                                                     });
    EXPECT_THAT(Visited(Folder(), 2, 1), IsEmpty());
    EXPECT_THAT(Visited(Folder(), 2, 4), ElementsAre(2, 3, 4));
    const Numbers most = Visited(Folder(), 100, 199);
    EXPECT_THAT(most, SizeIs(100));
    EXPECT_EQ(most.front(), 100);
    EXPECT_EQ(most.back(), 199);
    EXPECT_EQ(listings, 0);
}

TEST_F(VolumeNumbersTest, OfADamagedCountAreThoseThatTheFolderNames) {
    for (const char* name : {"1.txt", "2.txt", "10.TXT", "9.Txt", "102.txt", "103.txt", "03.txt",
                             "4.txt2", "5", "x6.txt", "7 .txt", ".txt", "99999999999.txt"})
        Write(name);
    folder_.MakeDir("11.txt");
    EXPECT_THAT(Visited(Folder(), 2, 102), ElementsAre(2, 9, 10, 11, 102));
    EXPECT_THAT(Visited(Folder(), 2, INT_MAX), ElementsAre(2, 9, 10, 11, 102, 103));
    EXPECT_THAT(Visited(Folder(), 2, INT_MAX, ""), ElementsAre(5));
}

TEST_F(VolumeNumbersTest, ReachTheLargestOuterVolume) {
    Write("2147483745.txt");
    Write("2147483746.txt");
    EXPECT_THAT(Visited(Folder(), 100, VolumeNumber{INT_MAX} + 98), ElementsAre(2147483745));
}

TEST_F(VolumeNumbersTest, AreAllVisitedWhereTheFolderCannotBeListed) {
    EXPECT_THAT(Visited(Path(folder_.Text("missing")), 2, 1001), SizeIs(1000));
}

// Joined onto the empty path, an entry is in the root of the current drive. A path of two quotes is
// a folder of that name, but nothing when it is read again.
TEST_F(VolumeNumbersTest, AreListedWhereTheFolderReadsAsNothing) {
    Write("7.txt");
    for (const auto& [folder, pattern] : {std::pair{Path(), std::wstring(L"\\.\\*")},
                                          std::pair{Path("''''"), std::wstring(L"''\\.\\*")}}) {
        std::wstring listed;
        const test::Hook<decltype(&FindFirstFileW)> hook(
            "FindFirstFileW", [&](auto real, LPCWSTR name, WIN32_FIND_DATAW* data) {
                listed = name;
                return real((folder_.Dir() / "*").c_str(), data);
            });
        EXPECT_THAT(Visited(folder, 2, INT_MAX), ElementsAre(7));
        EXPECT_EQ(listed, pattern);
    }
}

TEST_F(VolumeNumbersTest, MissNothingThatIsThere) {
    std::mt19937 random(20);
    for (int round = 0; round < 20; ++round) {
        const test::TemporaryFolder folder;
        for (int file = 0; file < 30; ++file) {
            std::string name = std::to_string(random() % 400);
            if (random() % 5 == 0) name.insert(0, "0");
            folder.Write(name + (random() % 3 == 0 ? ".TXT" : ".txt"), "");
        }
        Numbers there;
        for (VolumeNumber number = 2; number <= 300; ++number)
            if (PathExists(folder.Text(std::to_string(number) + ".txt"))) there.push_back(number);
        EXPECT_EQ(Visited(Path(folder.Text()), 2, 300), there) << "round " << round;
    }
}

// Asking for each of two thousand million volumes would take days.
TEST_F(VolumeNumbersTest, EndEvenForTheLargestCountInAFolderOfManyFiles) {
    folder_.Write("inst\\volumes.txt", "2147483647");
    for (int number = 1; number <= 1000; ++number)
        Write("file " + std::to_string(number));
    folder_.Write("1.txt", "MTBDIR=X");
    folder_.Write("8.txt", "MTBDIR=X");
    folder_.Write("1000.txt", "MTBDIR=Y");
    LaunchOptions options = test::ParseOptions({});
    options.mediaDir = Folder();
    std::vector<std::string> volumes;
    EXPECT_EQ(ResolveVolumes(options, volumes), 0);
    EXPECT_FALSE(options.skipTemporaryCopy);
    EXPECT_EQ(GetEnvVar("ZEPAdmInstVolumesCount"), "2147483647");
}

}  // namespace
}  // namespace launcher
