// What becomes of a run whose folder dialog was confirmed or cancelled.
//
// A folder's path is typed and OK pressed: Wine's OK takes no empty text for the folder that the
// dialog is in, as Windows does. And in Wine such a folder is not entered before the dialog closes,
// so that only the folders before it count; the tests are about those.

#include <string>

#include "tests/dialog/support/dialog_launch.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Confirm : public DialogTest {
  protected:
    // A run in whose dialog the folder is confirmed at once.
    LauncherRun RunAndConfirm(const std::string& folder,
                              const std::vector<std::string>& arguments = {}) const {
        return RunWithDialog(StartOf(MarkedMedia(), arguments),
                             [&folder](DialogDriver& dialog) { dialog.Confirm(folder); });
    }
};

class Cancel : public DialogTest {};

TEST_F(Confirm, StartsTheInstallerOfTheFolder) {
    const LauncherRun run = RunAndConfirm(AddInstallerIn("far/near"), {"x"});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().module, InstallerOf("far\\near"));
    EXPECT_THAT(run.output,
                HasSubstr(" INFO: Installer Media: \"" + InstallerOf("far\\near") + "\"\r\n"));
}

TEST_F(Confirm, LeavesTheMediaTheCurrentOne) {
    const std::string folder = AddInstallerIn("far/near");
    const LauncherRun run = RunAndConfirm(folder, {"x"});
    const std::string media = scratch.Text("far\\near\\between\\media");
    EXPECT_THAT(run.Installer().Arguments(), ElementsAre("-CDpath", media, "x"));
    EXPECT_EQ(run.Installer().Variable("MORInstaller"), folder + "\\inst\\");
    EXPECT_EQ(run.Installer().Variable("MORInst"), media + "\\inst");
    EXPECT_EQ(run.Installer().Variable("ZEP_OS"), "win_b64");
}

TEST_F(Confirm, HandsBackTheExitCodeOfTheInstaller) {
    variables["STANDIN_EXIT"] = "3010";
    EXPECT_THAT(RunAndConfirm(AddInstallerIn("far/near"), {"-wait"}), EndsQuietlyWith(3010));
}

TEST_F(Confirm, TakesTheFirstVolumeOfASplitMedia) {
    AddInstallerIn("far/near");
    AddInstallerIn("far/near/1");
    const LauncherRun run = RunAndConfirm(scratch.Text("far\\near"));
    EXPECT_EQ(run.Installer().module, InstallerOf("far\\near\\1"));
    EXPECT_EQ(run.Installer().Variable("MORInstaller"), scratch.Text("far\\near\\1\\inst") + "\\");
}

TEST_F(Confirm, LooksForTheFlavourOfTheMarker) {
    AddInstallerIn("far/near", "win_b64");
    AddInstallerIn("far/near", "intel_a");
    const LauncherRun run = RunWithDialog(MarkedMedia("intel_a"), [this](DialogDriver& dialog) {
        dialog.Confirm(scratch.Text("far\\near"));
    });
    EXPECT_EQ(run.Installer().module, InstallerOf("far\\near", "intel_a"));
    EXPECT_EQ(run.Installer().Variable("ZEP_OS"), "intel_a");
}

// With OK hidden, Enter still confirms.
TEST_F(Confirm, FolderWithoutAnInstallerIsRefused) {
    const LauncherRun run = RunAndConfirm(scratch.MakeDir("empty"));
    EXPECT_THAT(run, IsRefusedWith(kNotFound));
    EXPECT_THAT(run.LeftInTemp(), IsEmpty());
}

// What counts is the last folder in which the installer was found.
TEST_F(Confirm, FolderWithoutAnInstallerStandsForTheLastGoodOne) {
    AddInstallerIn("far/near");
    const LauncherRun run = RunAndConfirm(scratch.MakeDir("empty"));
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().module, InstallerOf("far\\near"));
}

TEST_F(Cancel, IsRefused) {
    const LauncherRun run =
        RunWithDialog(MarkedMedia(), [](DialogDriver& dialog) { dialog.Cancel(); });
    EXPECT_THAT(run, IsRefusedWith(kNotFound));
    EXPECT_THAT(run.LeftInTemp(), IsEmpty());
}

TEST_F(Cancel, IsRefusedAfterAGoodFolderToo) {
    AddInstallerIn("far/near");
    const LauncherRun run = RunWithDialog(MarkedMedia(), [](DialogDriver& dialog) {
        EXPECT_TRUE(dialog.ShowsOk());
        dialog.Cancel();
    });
    EXPECT_THAT(run, IsRefusedWith(kNotFound));
    EXPECT_THAT(run.output, HasSubstr("Installer Media: "));
}

// The number of volumes is asked for, which the separate installer media must not change.
TEST_F(Confirm, GoesOnWithTheVolumes) {
    variables["ZEPAdmODTMultiVolumes"] = "1";
    const std::string folder = AddInstallerIn("far/near");
    Media media = MarkedMedia();
    media.MakeSplit(3, "SET");
    WriteVolumeMarker(media.Root().parent_path() / "2", 2, "SET");
    WriteVolumeMarker(media.Root().parent_path() / "3", 3, "SET");
    const LauncherRun run =
        RunWithDialog(media, [&folder](DialogDriver& dialog) { dialog.Confirm(folder); });
    EXPECT_EQ(run.exitCode, 3u);
    EXPECT_FALSE(run.report.has_value());
}

}  // namespace
}  // namespace launcher::test
