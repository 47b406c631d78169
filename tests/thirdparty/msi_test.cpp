// A real Windows Installer package in the place of the media's installer: the program that installs
// such packages runs in front of it.
//
// Wine's installer program passes over "-CDpath", which it does not know, while Windows's shows its
// help; there a package needs a program in between that drops it.

#include <windows.h>

#include <filesystem>
#include <string>

#include "tests/e2e/support/launcher_test.h"
#include "tests/e2e/support/wine.h"

namespace launcher::test {
namespace {

class MsiPackage : public LauncherTest {
  protected:
    void SetUp() override {
        if (!IsWine()) GTEST_SKIP() << "Windows's installer program refuses \"-CDpath\"";
        LauncherTest::SetUp();
    }
    // Hands the media's package to the installer program with this action and this property, and
    // waits for it; nothing may be shown. Returns the launcher's exit code.
    DWORD RunPackage(const std::string& action, const std::string& property) {
        Media media = EmptyMedia();
        media.AddFile("inst/win_b64/code/bin/ZEPInsAppliGUI.exe", ReadFile(BuiltFile(MSI_SAMPLE)));
        variables["DEBUGCMD_INSTALLK7"] = "msiexec.exe /qn " + action;
        const LauncherRun run =
            Run(media, {"-wait", "INSTALLDIR=" + scratch.Text("in stalled"), property});
        EXPECT_THAT(run.BoxTexts(), testing::IsEmpty());
        return run.exitCode;
    }
    bool IsInstalled() const {
        return std::filesystem::exists(scratch.Dir() / "in stalled" / "sample.txt");
    }
};

// One test, because its setting is for all programs of that name, also for those of other tests.
TEST_F(MsiPackage, InstallsAndRemovesItsFileUnlessItRefuses) {
    // The launcher must see no web library of Wine's; the installer program needs one.
    WineSettings installer("msiexec.exe");
    installer.OverrideDll("wininet", "builtin");
    EXPECT_EQ(RunPackage("/i", "REFUSED=1"), static_cast<DWORD>(ERROR_INSTALL_FAILURE));
    EXPECT_FALSE(IsInstalled());
    EXPECT_EQ(RunPackage("/i", "REFUSED="), 0u);
    EXPECT_TRUE(IsInstalled());
    EXPECT_EQ(RunPackage("/x", "REFUSED="), 0u);
    EXPECT_FALSE(IsInstalled());
}

}  // namespace
}  // namespace launcher::test
