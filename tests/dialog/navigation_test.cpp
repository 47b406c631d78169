// The OK button while a person goes from folder to folder.
//
// These tests press what only Wine's dialog has: Backspace in its list for the folder above, and
// the two buttons of its toolbar by their numbers. Windows keeps neither open to other programs.

#include <cstddef>
#include <string>
#include <string_view>

#include "tests/dialog/support/dialog_launch.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

class Navigation : public DialogTest {
  protected:
    void SetUp() override {
        // Windows' dialog has other buttons and keys, which nothing here knows. What it asks of the
        // launcher is tested on every system, in the tests of the dialog's events.
        if (!IsWine()) GTEST_SKIP() << "presses keys and buttons of Wine's dialog";
        DialogTest::SetUp();
    }
};

TEST_F(Navigation, OkShowsOnlyWhereTheInstallerIs) {
    const std::string folder = AddInstallerIn("far");
    const LauncherRun run = RunWithDialog(MarkedMedia(), [&folder](DialogDriver& dialog) {
        EXPECT_TRUE(dialog.HidesOk());
        dialog.GoUp();
        EXPECT_TRUE(dialog.ShowsOk());
        dialog.GoUp();
        EXPECT_TRUE(dialog.HidesOk());
        dialog.GoBack();
        EXPECT_TRUE(dialog.ShowsOk());
        dialog.GoBack();
        EXPECT_TRUE(dialog.HidesOk());
        dialog.GoForward();
        EXPECT_TRUE(dialog.ShowsOk());
        dialog.Confirm(folder);
    });
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().module, InstallerOf("far"));
}

TEST_F(Navigation, LastOfTwoGoodFoldersCounts) {
    AddInstallerIn("far/near");
    const std::string folder = AddInstallerIn("far");
    const LauncherRun run = RunWithDialog(MarkedMedia(), [&folder](DialogDriver& dialog) {
        EXPECT_TRUE(dialog.ShowsOk());
        dialog.GoUp();
        EXPECT_TRUE(dialog.ShowsOk());
        dialog.Confirm(folder);
    });
    EXPECT_EQ(run.Installer().module, InstallerOf("far"));
    EXPECT_EQ(run.Installer().Variable("MORInstaller"), folder + "\\inst\\");
}

TEST_F(Navigation, CancelAwayFromAGoodFolderIsRefused) {
    AddInstallerIn("far/near");
    const LauncherRun run = RunWithDialog(MarkedMedia(), [](DialogDriver& dialog) {
        EXPECT_TRUE(dialog.ShowsOk());
        dialog.GoUp();
        EXPECT_TRUE(dialog.HidesOk());
        dialog.Cancel();
    });
    EXPECT_THAT(run, IsRefusedWith(kNotFound));
}

int Occurrences(std::string_view text, std::string_view part) {
    int count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != text.npos; at += part.size())
        ++count;
    return count;
}

// Above a drive there is no folder with a path, so nothing to look through.
class AboveADrive : public Navigation {
  protected:
    // Leaves the drive upwards and enters it again; OK must look the same all the time.
    void ExpectNoChangeAbove(char drive, bool okShown) const {
        const LauncherRun run = RunOnDrive(drive, "far/near", [okShown](DialogDriver& dialog) {
            const auto okIsTheSame = [&] { return okShown ? dialog.ShowsOk() : dialog.HidesOk(); };
            EXPECT_TRUE(okIsTheSame());
            dialog.GoUp();
            EXPECT_TRUE(okIsTheSame());
            dialog.GoBack();
            EXPECT_TRUE(okIsTheSame());
            dialog.Cancel();
        });
        EXPECT_EQ(Occurrences(run.output, std::string(1, drive) + ":\\1\\inst"), 2);
        EXPECT_EQ(Occurrences(run.output, "trying without sub dir"), 2);
    }
};

TEST_F(AboveADrive, OkStaysShown) {
    AddInstallerIn("far/near");
    ExpectNoChangeAbove('W', true);
}

TEST_F(AboveADrive, OkStaysHidden) {
    ExpectNoChangeAbove('X', false);
}

}  // namespace
}  // namespace launcher::test
