// How the folder dialog opens.

#include <string>

#include "tests/dialog/support/dialog_launch.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class StartFolder : public DialogTest {};

class Title : public DialogTest, public testing::WithParamInterface<const char*> {};

TEST_P(Title, EndsWithTheFlavour) {
    RunWithDialog(MarkedMedia(GetParam()), [](DialogDriver& dialog) {
        EXPECT_EQ(dialog.Title(),
                  "Select the folder of the separate media called QN_Installer for " +
                      std::string(GetParam()));
        dialog.Cancel();
    });
}

INSTANTIATE_TEST_SUITE_P(Flavours, Title, testing::Values("win_b64", "win_csa64", "intel_a"),
                         [](const auto& row) { return TestName(row.param); });

TEST_F(StartFolder, IsTwoLevelsAboveTheMedia) {
    const LauncherRun run =
        RunWithDialog(MarkedMedia(), [](DialogDriver& dialog) { dialog.Cancel(); });
    EXPECT_THAT(run.output,
                HasSubstr("\r\n INFO: Installer executable \"" + InstallerOf("far\\near\\1") +
                          "\" does not exist, trying without sub dir \"1\"\r\n"));
    EXPECT_THAT(run.output, Not(HasSubstr(scratch.Text("far\\near\\between\\1"))));
    EXPECT_THAT(run.output, Not(HasSubstr(scratch.Text("far\\1"))));
}

// The lookup in a folder that the dialog enters says nothing but its progress.
TEST_F(StartFolder, IsLookedThroughQuietly) {
    variables["ZEP_TraceMsgBox"] = "1";
    const Media media = MarkedMedia();
    const LauncherRun run = Run(media);
    EXPECT_THAT(run.BoxTexts(),
                ElementsAre("64-bit OS", "No installer in the current media.",
                            media.Text("inst\\common\\win_b64.installos") + " found, os win_b64",
                            "Installer executable \"" + InstallerOf("far\\near\\1") +
                                "\" does not exist, trying without sub dir \"1\"",
                            kNotFound));
    EXPECT_EQ(run.exitCode, 1u);
}

TEST_F(StartFolder, OffersOkWhenItHoldsTheInstaller) {
    AddInstallerIn("far/near");
    RunWithDialog(MarkedMedia(), [](DialogDriver& dialog) {
        EXPECT_TRUE(dialog.ShowsOk());
        dialog.Cancel();
    });
}

TEST_F(StartFolder, HidesOkWhenItDoesNot) {
    AddInstallerIn("far");
    AddInstallerIn("far/near", "win_csa64");  // for another flavour
    RunWithDialog(MarkedMedia(), [](DialogDriver& dialog) {
        EXPECT_TRUE(dialog.HidesOk());
        dialog.Cancel();
    });
}

// "-UI" asks for what is on anyway.
TEST_F(StartFolder, IsTheSameWithTheUiOption) {
    const std::string folder = AddInstallerIn("far/near");
    const Media media = MarkedMedia();
    const LauncherRun run = RunWithDialog(StartOf(media, {"-UI"}), [&](DialogDriver& dialog) {
        EXPECT_TRUE(dialog.ShowsOk());
        dialog.Confirm(folder);
    });
    EXPECT_EQ(run.Installer().module, InstallerOf("far\\near"));
    EXPECT_THAT(run.Installer().Arguments(), ElementsAre("-CDpath", media.Text()));
}

class OnADrive : public DialogTest {
  protected:
    static void Cancel(DialogDriver& dialog) { dialog.Cancel(); }
};

TEST_F(OnADrive, DialogMayStartAtTheRoot) {
    const LauncherRun run = RunOnDrive('T', "far/near", Cancel);
    EXPECT_THAT(run.output, HasSubstr("Installer executable \"T:\\1\\inst"));
    EXPECT_THAT(run, IsRefusedWith(kNotFound));
}

// The folder two levels above would be outside of the drive: Windows chooses another.
TEST_F(OnADrive, DialogOpensForAMediaAtTheRoot) {
    const LauncherRun run = RunOnDrive('U', "far/near/between/media", Cancel);
    EXPECT_THAT(run.output, Not(HasSubstr("\"U:\\1\\inst")));
    EXPECT_THAT(run, IsRefusedWith(kNotFound));
}

TEST_F(OnADrive, DialogOpensForAMediaOneFolderBelowTheRoot) {
    const LauncherRun run = RunOnDrive('V', "far/near/between", Cancel);
    EXPECT_THAT(run.output, Not(HasSubstr("\"V:\\1\\inst")));
    EXPECT_THAT(run, IsRefusedWith(kNotFound));
}

}  // namespace
}  // namespace launcher::test
