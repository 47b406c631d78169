// Media split into volumes, as the installer and the caller get to know them.

#include <optional>
#include <string>

#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

using testing::IsEmpty;

class VolumesTest : public LauncherTest {
  protected:
    // Volume 1 of a medium of `count`, in the folder "1" of a set's folder.
    Media FirstVolume(int count) const {
        Media media(scratch.Dir() / "set" / "1");
        return media.AddInstaller(UsualOs()).MakeSplit(count, "SET");
    }
    void AddSibling(int number, const std::string& id = "SET") const {
        WriteVolumeMarker(scratch.Dir() / "set" / std::to_string(number), number, id);
    }
    std::string Sibling(int number) const { return scratch.Text("set\\" + std::to_string(number)); }
    // The query: the count as exit code, and nothing else.
    DWORD AskFor(const Media& media) {
        variables["ZEPAdmODTMultiVolumes"] = "1";
        const LauncherRun run = Run(media, {"-wait"});
        EXPECT_FALSE(run.report.has_value());
        EXPECT_THAT(run.BoxTexts(), IsEmpty());
        EXPECT_THAT(run.LeftInTemp(), IsEmpty());
        return run.exitCode;
    }
};

class VolumeQuery : public VolumesTest {};

TEST_F(VolumeQuery, AnswersOneForAnOrdinaryMedia) {
    EXPECT_EQ(AskFor(UsualMedia()), 1u);
}

TEST_F(VolumeQuery, AnswersTheNumberOfVolumes) {
    AddSibling(2);
    AddSibling(3);
    EXPECT_EQ(AskFor(FirstVolume(3)), 3u);
}

TEST_F(VolumeQuery, AnswersOneForASetInOneFolder) {
    Media media = FirstVolume(3);
    WriteVolumeMarker(media.Root(), 2, "SET");
    WriteVolumeMarker(media.Root(), 3, "SET");
    EXPECT_EQ(AskFor(media), 1u);
}

TEST_F(VolumeQuery, AnswersZeroForAnIncompleteSet) {
    AddSibling(2);
    EXPECT_EQ(AskFor(FirstVolume(3)), 0u);
}

TEST_F(VolumeQuery, AnswersZeroForAForeignVolume) {
    AddSibling(2, "ANOTHER SET");
    EXPECT_EQ(AskFor(FirstVolume(2)), 0u);
}

TEST_F(VolumeQuery, AnswersZeroForACountThatIsNoNumber) {
    EXPECT_EQ(AskFor(UsualMedia().AddFile("inst/volumes.txt", "three\r\n")), 0u);
}

class Volumes : public VolumesTest {};

TEST_F(Volumes, OfAnOrdinaryMediaAreNotMentioned) {
    variables["ZEPAdmInstVolumesCount"] = "from before";
    const LauncherRun run = Run(UsualMedia());
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstVolumesCount"), std::nullopt);
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstVolumePath_2"), std::nullopt);
}

TEST_F(Volumes, TwoGiveOnePath) {
    AddSibling(2);
    const InstallerReport seen = Run(FirstVolume(2)).Installer();
    EXPECT_EQ(seen.Variable("ZEPAdmInstVolumesCount"), "2");
    EXPECT_EQ(seen.Variable("ZEPAdmInstMTBDIR"), "SET");
    EXPECT_EQ(seen.Variable("ZEPAdmInstVolumePath_2"), Sibling(2));
    EXPECT_EQ(seen.Variable("ZEPAdmInstVolumePath_3"), std::nullopt);
    EXPECT_EQ(seen.Variable("ZEPAdmInstVolumePath_1"), std::nullopt);
}

TEST_F(Volumes, ThreeGiveTwoPathsAndAreUsedInPlace) {
    const Media media = FirstVolume(3);
    AddSibling(2);
    AddSibling(3);
    const LauncherRun run = Run(media, {"-wait"});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstVolumePath_2"), Sibling(2));
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstVolumePath_3"), Sibling(3));
    EXPECT_EQ(run.Installer().module, media.InstallerText(UsualOs()));
    EXPECT_THAT(run.LeftInTemp(), IsEmpty());
    EXPECT_EQ(run.output, Lines({" INFO: " + OsTrace(),
                                 " INFO: Installer found in current media: \"" +
                                     media.InstallerText(UsualOs()) + "\".",
                                 " INFO: This media is composed of 3 volumes.",
                                 "       Volume 1 found in: " + media.Text(),
                                 "       Volume 2 found in: " + Sibling(2),
                                 "       Volume 3 found in: " + Sibling(3)}));
    EXPECT_EQ(run.errors, "");
}

TEST_F(Volumes, InOneFolderLookLikeAnOrdinaryMedia) {
    const Media media = FirstVolume(2);
    WriteVolumeMarker(media.Root(), 2, "SET");
    const LauncherRun run = Run(media);
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstVolumesCount"), std::nullopt);
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstMTBDIR"), "SET");
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstVolumePath_2"), std::nullopt);
}

// The outer volumes 7 and 8 hold one volume each of the set inside them.
TEST_F(Volumes, InsideOuterVolumesAreFound) {
    Media media(scratch.Dir() / "7" / "R" / "V");
    media.AddInstaller(UsualOs()).MakeSplit(2, "SET");
    WriteVolumeMarker(scratch.Dir() / "7", 7, "OUTER");
    WriteVolumeMarker(scratch.Dir() / "8", 8, "OUTER");
    WriteVolumeMarker(scratch.Dir() / "8" / "R" / "2", 2, "SET");
    const InstallerReport seen = Run(media).Installer();
    EXPECT_EQ(seen.Variable("ZEPAdmInstVolumePath_2"), scratch.Text("8\\R\\2"));
    EXPECT_EQ(seen.Variable("ZEPAdmInstMTBDIR"), "OUTER");
    EXPECT_EQ(seen.Variable("ZEPAdmInstFirstAMVolume"), "7");
    EXPECT_EQ(seen.Variable("ZEPAdmInstFirstAMPath"), scratch.Text("7"));
    EXPECT_EQ(seen.Variable("ZEPAdmInstAMRelativePath"), "R");
}

TEST_F(Volumes, MissingOnesAreWarnedOfOnTheErrorStream) {
    AddSibling(2);
    const LauncherRun run = Run(FirstVolume(3));
    EXPECT_EQ(run.errors,
              " WARN: Missing volumes. Please make sure you copied everything correctly.\r\n");
    EXPECT_TRUE(run.report.has_value());
}

}  // namespace
}  // namespace launcher::test
