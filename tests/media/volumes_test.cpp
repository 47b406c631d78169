#include "media/volumes.h"

#include "fs/environment.h"
#include "tests/media/volumes_fixture.h"
#include "tests/support/isolated_test.h"

namespace launcher::test {
namespace {

constexpr char kOnlineVar[] = "ZEP_Online_Installation_Caf_Repositiory";
const Outcome kNotSplit{.result = 1, .skipTemporaryCopy = true};

TEST_F(VolumesTest, TakeAMediaWithoutACountFileAsWhole) {
    Marker("V", 1, "X");
    EXPECT_EQ(Resolve(At("V")), kNotSplit);
}

TEST_F(VolumesTest, AreNotCheckedForSoftwareManagementOrOnline) {
    Count("V", "three");
    EXPECT_EQ(Resolve(At("V"), true), kNotSplit);

    SetEnvVar(kOnlineVar, "0");
    EXPECT_EQ(Resolve(At("V")), kNotSplit);
    SetEnvVar(kOnlineVar, "");
    EXPECT_EQ(Resolve(At("V")), Outcome{});
}

TEST_F(VolumesTest, AreNotLookedForBelowACountOfTwo) {
    for (const char* line : {"1", "0", "-3", "1 volume", "-2147483648"}) {
        Count("V", line);
        EXPECT_EQ(Resolve(At("V")), kNotSplit) << line;
    }
}

TEST_F(VolumesTest, EndSilentlyWithoutANumber) {
    VolumeOne("V", 2);
    for (const char* line : {"three", "", "x3", "2147483648", "-99999999999"}) {
        Count("V", line);
        EXPECT_EQ(Resolve(At("V")), Outcome{}) << line;
    }
}

TEST_F(VolumesTest, EndSilentlyWhenTheCountCannotBeRead) {
    VolumeOne("V", 2);
    const FileHandle lock = Lock("V/inst/volumes.txt");
    EXPECT_EQ(Resolve(At("V")), Outcome{});

    folder_.MakeDir("W/inst/volumes.txt");
    EXPECT_EQ(Resolve(At("W")), Outcome{});
}

TEST_F(VolumesTest, PassTheCountLineOnAsItWasRead) {
    VolumeOne("V", 1);
    Count("V", " 3 volumes\t");
    EXPECT_EQ(Resolve(At("V")), (Outcome{.messages = {Composed(" 3 volumes\t"), Found(1, "V")},
                                         .volumesCount = " 3 volumes\t",
                                         .mtbDir = "X"}));
}

class VolumeOneTest : public VolumesTest {
  protected:
    void ExpectNotAccessible(const std::string& mediaDir) const {
        EXPECT_EQ(
            Resolve(At(mediaDir)),
            (Outcome{.messages = {Composed("2"),
                                  Warning("1.txt not found or not accessible in: " + At(mediaDir)),
                                  Plain("Please make sure you copied the whole volume.")},
                     .volumesCount = "2"}));
    }
};

TEST_F(VolumeOneTest, NeedsItsMarker) {
    Count("V", "2");
    Marker("V", 2, "X");
    ExpectNotAccessible("V");
}

TEST_F(VolumeOneTest, NeedsAnIdInItsMarker) {
    Count("V", "2");
    Marker("V", 1, "");
    ExpectNotAccessible("V");
    folder_.Write("V/1.txt", "no id");
    ExpectNotAccessible("V");
}

TEST_F(VolumeOneTest, NeedsAReadableMarker) {
    VolumeOne("V", 2);
    const FileHandle lock = Lock("V/1.txt");
    ExpectNotAccessible("V");

    Count("W", "2");
    folder_.MakeDir("W/1.txt");
    ExpectNotAccessible("W");
}

class SingleFolderTest : public VolumesTest {
  protected:
    static std::string ForeignHere(int volume, const std::string& id) {
        return Warning("Volume " + std::to_string(volume) + " of " + id +
                       " found in the directory of X");
    }
};

TEST_F(SingleFolderTest, IsAnOrdinaryMediaWhenComplete) {
    VolumeOne("V", 3);
    Marker("V", 2, "X");
    Marker("V", 3, "X");
    EXPECT_EQ(Resolve(At("V")),
              (Outcome{.result = 1,
                       .skipTemporaryCopy = true,
                       .messages = {Composed("3"), Plain("All volumes found in: " + At("V"))},
                       .mtbDir = "X"}));
}

TEST_F(SingleFolderTest, IgnoresVolumesBeyondTheCount) {
    VolumeOne("V", 2);
    Marker("V", 2, "X");
    Marker("V", 3, "Z");
    EXPECT_EQ(Resolve(At("V")).result, 1);
}

TEST_F(SingleFolderTest, NamesEveryForeignVolumeAndEnds) {
    VolumeOne("P/V", 4);
    Marker("P/V", 2, "Z");
    Marker("P/V", 3, "X");
    Marker("P/V", 4, "x");
    for (const int k : {2, 3, 4})
        Marker("P/" + std::to_string(k), k, "X");
    EXPECT_EQ(Resolve(At("P/V")), Failed(4, {ForeignHere(2, "Z"), ForeignHere(4, "x")}));
}

TEST_F(SingleFolderTest, ComparesIdsToTheLastBlank) {
    VolumeOne("V", 2);
    Marker("V", 2, "X ");
    EXPECT_EQ(Resolve(At("V")), Failed(2, {ForeignHere(2, "X ")}));
}

TEST_F(SingleFolderTest, MissesVolumesThatLieElsewhere) {
    VolumeOne("P/V", 4);
    Marker("P/V", 2, "X");
    Marker("P/V", 3, "X");
    Marker("P/4", 4, "X");
    EXPECT_EQ(Resolve(At("P/V")), Failed(4, {Missing()}));
}

TEST_F(SingleFolderTest, TakesAnUnreadableMarkerForAMissingVolume) {
    VolumeOne("V", 4);
    for (const int k : {2, 3})
        Marker("V", k, "X");
    const FileHandle lock = Lock("V/3.txt");
    folder_.MakeDir("V/4.txt");
    EXPECT_EQ(Resolve(At("V")), Failed(4, {Missing()}));
}

class SiblingTest : public VolumesTest {};

TEST_F(SiblingTest, VolumesAreListedInOrder) {
    VolumeOne("P/Any name", 3);
    Marker("P/2", 2, "X");
    Marker("P/3", 3, "X");
    EXPECT_EQ(Resolve(At("P/Any name")),
              (Outcome{.result = 3,
                       .skipTemporaryCopy = true,
                       .volumes = {At("P/2"), At("P/3")},
                       .messages = {Composed("3"), Found(1, "P/Any name"), Found(2, "P/2"),
                                    Found(3, "P/3")},
                       .volumesCount = "3",
                       .mtbDir = "X"}));
}

TEST_F(SiblingTest, NeedsTheNumberAsFolderAndMarkerName) {
    VolumeOne("P/1", 2);
    Marker("P/02", 2, "X");
    Marker("P/2", 1, "X");
    EXPECT_EQ(Resolve(At("P/1")), Failed(2, {Found(1, "P/1")}));
}

TEST_F(SiblingTest, NamesEveryForeignVolumeAndEnds) {
    Marker("Q/7", 7, "Y");
    VolumeOne("Q/7/V", 4);
    Marker("Q/7/2", 2, "Z");
    Marker("Q/7/3", 3, "X");
    Marker("Q/7/4", 4, "X\t");
    EXPECT_EQ(Resolve(At("Q/7/V")),
              Failed(4,
                     {Found(1, "Q/7/V"), Foreign("Volume 2", "Z", "Q/7/2", "X"), Found(3, "Q/7/3"),
                      Foreign("Volume 4", "X\t", "Q/7/4", "X")},
                     {At("Q/7/3")}));
}

// A marker that cannot be read is none.
TEST_F(SiblingTest, MissesVolumesThatLieElsewhere) {
    VolumeOne("P/V", 4);
    for (const int k : {2, 3})
        Marker("P/" + std::to_string(k), k, "X");
    const FileHandle lock = Lock("P/2/2.txt");
    folder_.MakeDir("P/4/4.txt");
    EXPECT_EQ(Resolve(At("P/V")),
              Failed(4, {Found(1, "P/V"), Found(3, "P/3"), Missing()}, {At("P/3")}));
}

class ExportedVolumesTest : public IsolatedTest {};

TEST_F(ExportedVolumesTest, AreNumberedFromTheSecondOn) {
    ExportVolumePaths({"V:\\2", "W:\\3"});
    EXPECT_EQ(GetEnvVar("ZEPAdmInstVolumePath_1"), "");
    EXPECT_EQ(GetEnvVar("ZEPAdmInstVolumePath_2"), "V:\\2");
    EXPECT_EQ(GetEnvVar("ZEPAdmInstVolumePath_3"), "W:\\3");
    EXPECT_EQ(GetEnvVar("ZEPAdmInstVolumePath_4"), "");
}

}  // namespace
}  // namespace launcher::test
