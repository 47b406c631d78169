// Media in places of all kinds.

#include <string>
#include <system_error>

#include "tests/e2e/support/launcher_test.h"
#include "tests/support/links.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;

namespace stdfs = std::filesystem;

struct FolderRow : Row {
    const char* folder;
};

class MediaFolder : public LauncherTableTest<FolderRow> {};

TEST_P(MediaFolder, MayHaveAnyName) {
    Media media(scratch.Dir() / FromUtf8(GetParam().folder));
    media.AddInstaller(UsualOs()).MakeSplit(2, "SET");
    const LauncherRun run = Run(media, {"--mgt"});
    EXPECT_EQ(run.Installer().module, media.InstallerText(UsualOs()));
    EXPECT_THAT(run.Installer().Arguments(), ElementsAre("-CDpath", media.Text(), "--mgt"));
    EXPECT_EQ(run.Installer().Variable("MORInst"), media.Text("inst"));
}

TEST_P(MediaFolder, MayBeCopiedFromUnderAnyName) {
    Media media(scratch.Dir() / FromUtf8(GetParam().folder));
    media.AddInstaller(UsualOs()).MakeSplit(2, "SET");
    media.AddFile("inst/common/" + std::string(GetParam().folder) + "/a file.dat", "content");
    const LauncherRun run = Run(media, {"-wait"});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstOriginalMediaDir"), media.Text());
    const stdfs::path copy =
        FromUtf8(run.Installer().Variable("ZEPAdmInstCurrentMediaDir").value());
    EXPECT_EQ(ReadFile(copy / "inst" / "common" / FromUtf8(GetParam().folder) / "a file.dat"),
              "content");
}

// Blanks, signs that mean something to a command line, characters of other scripts, of the
// supplementary planes and combining ones.
INSTANTIATE_TEST_SUITE_P(Table, MediaFolder,
                         testing::Values(FolderRow{{"Blanks"}, "my media folder"},
                                         FolderRow{{"Signs"}, "a & b (c) %TEMP% ^; 'd' -wait"},
                                         FolderRow{{"Scripts"}, "Médium носитель 媒体"},
                                         FolderRow{{"Supplementary"}, "💿 e\xCC\x81"}),
                         RowName);

class Places : public LauncherTest {};

TEST_F(Places, DriveRoot) {
    const Media onDisk = UsualMedia().AddFile("inst/volumes.txt", "1");
    const MappedDrive drive("q:", onDisk.Root());
    const LauncherRun run =
        RunToEnd({FromUtf8("Q:\\setup.exe"), {"-wait", "x"}, variables, scratch.Dir()});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(
        run.Installer().commandLine,
        "\"Q:\\inst\\" + UsualOs() + "\\code\\bin\\ZEPInsAppliGUI.exe\" \"-CDpath\" \"Q:\" \"x\"");
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstCurrentMediaDir"), "Q:");
    EXPECT_EQ(run.Installer().Variable("MORInst"), "Q:\\inst");
}

TEST_F(Places, DriveRootThatIsCopied) {
    const Media onDisk = MediaToCopy();
    const MappedDrive drive("r:", onDisk.Root());
    const LauncherRun run =
        RunToEnd({FromUtf8("R:\\setup.exe"), {"-wait"}, variables, scratch.Dir()});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstOriginalMediaDir"), "R:");
}

// Above a drive's root there is nothing: the folder handed to the installer is empty.
TEST_F(Places, DriveRootInSoftwareManagement) {
    const Media onDisk = UsualMedia();
    const MappedDrive drive("s:", onDisk.Root());
    const LauncherRun run =
        RunToEnd({FromUtf8("S:\\setup.exe"), {"-SoftMgt", "-List"}, variables, scratch.Dir()});
    EXPECT_THAT(run.Installer().Arguments(),
                ElementsAre("--mgt", "", "--var", "Radio_ZEPSoftwareMgtCheck?List=true"));
}

// In a folder that has a network path.
class NetworkPlaces : public LauncherTest {
  protected:
    void SetUp() override {
        LauncherTest::SetUp();
        std::error_code ignored;
        if (!stdfs::exists(NetworkFolder(), ignored))
            GTEST_SKIP() << "this machine does not share its disks with this user";
    }
    void TearDown() override {
        std::error_code ignored;
        stdfs::remove_all(root, ignored);
    }

    const stdfs::path root = NetworkFolder() / (scratch.Dir().filename().native() + L"-network");
};

TEST_F(NetworkPlaces, RunTheLauncher) {
    // Wine's GetModuleFileNameW gives such a program a name that cannot be opened. Runs on Windows;
    // media on a network path are tested below, on both.
    if (IsWine()) GTEST_SKIP() << "Wine tells such a program a name that leads nowhere";
    const Media media = Media(root).AddInstaller(UsualOs());
    const LauncherRun run = Run(media, {"-wait", "x"});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_THAT(run.Installer().Arguments(), ElementsAre("-CDpath", media.Text(), "x"));
}

TEST_F(NetworkPlaces, HoldAMedia) {
    const Media media = Media(root).AddInstaller(UsualOs(), "ZEPInsAppliODT.exe");
    variables["CurrentMediaDir"] = media.Text();
    const LauncherRun run = Run(EmptyMedia(), {"--odt"});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().commandLine,
              "\"" + media.InstallerText(UsualOs(), "ZEPInsAppliODT.exe") + "\" \"-CDpath\" \"" +
                  media.Text() + "\"");
    EXPECT_EQ(run.Installer().Variable("MORInst"), media.Text("inst"));
}

TEST_F(NetworkPlaces, HoldAMediaThatIsCopied) {
    const Media media =
        Media(root).AddInstaller(UsualOs(), "ZEPInsAppliODT.exe").MakeSplit(2, "SET");
    variables["CurrentMediaDir"] = media.Text();
    const LauncherRun run = Run(EmptyMedia(), {"--odt"});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstOriginalMediaDir"), media.Text());
    EXPECT_EQ(run.LeftInTemp().size(), 1u);
}

TEST_F(NetworkPlaces, HoldTheInstaller) {
    AddStandInInstaller(root, UsualOs());
    const Media media = EmptyMedia().AddMarker(UsualOs());
    const LauncherRun run = Run(media, {"-wait", "-installerPath", ToUtf8(root)});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().Variable("MORInstaller"), ToUtf8(root) + "\\inst\\");
    EXPECT_THAT(run.Installer().Arguments(), ElementsAre("-CDpath", media.Text()));
}

}  // namespace
}  // namespace launcher::test
