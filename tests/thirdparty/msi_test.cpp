// A real Windows Installer package in the place of the media's installer: a script that hands it to
// the program that installs such packages runs in front of it. That program takes neither
// "-CDpath", which Windows' own answers with its help, nor a "NAME=value" that is in quotes as a
// whole, as all arguments are.

#include <windows.h>

#include <filesystem>
#include <string>

#include "tests/e2e/support/launcher_test.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

class MsiPackage : public LauncherTest {
  protected:
    // Has the installer program do this with the media's package, and waits for it; nothing may be
    // shown. Returns the launcher's exit code.
    DWORD RunPackage(const std::string& action, const std::string& refused) {
        Media media = EmptyMedia();
        media.AddFile("inst/win_b64/code/bin/ZEPInsAppliGUI.exe", ReadFile(BuiltFile(MSI_SAMPLE)));
        // The package comes first, then "-CDpath" and the media's folder.
        const std::string script =
            scratch.Write("install.bat", "@msiexec.exe /qn " + action +
                                             " %1 INSTALLDIR=%4 REFUSED=%5\r\n"
                                             "@exit %ERRORLEVEL%\r\n");
        variables["DEBUGCMD_INSTALLK7"] = "cmd.exe /d /c call \"" + script + "\"";
        const LauncherRun run = Run(media, {"-wait", scratch.Text("in stalled"), refused});
        EXPECT_THAT(run.BoxTexts(), testing::IsEmpty());
        return run.exitCode;
    }
    bool IsInstalled() const {
        return std::filesystem::exists(scratch.Dir() / "in stalled" / "sample.txt");
    }
};

// One test, because its setting is for all programs of that name, those of other tests included.
TEST_F(MsiPackage, InstallsAndRemovesItsFileUnlessItRefuses) {
    // The launcher must see no web library of Wine's; the installer program needs one.
    WineSettings installer("msiexec.exe");
    installer.OverrideDll("wininet", "builtin");
    EXPECT_EQ(RunPackage("/i", "1"), static_cast<DWORD>(ERROR_INSTALL_FAILURE));
    EXPECT_FALSE(IsInstalled());
    EXPECT_EQ(RunPackage("/i", ""), 0u);
    EXPECT_TRUE(IsInstalled());
    EXPECT_EQ(RunPackage("/x", ""), 0u);
    EXPECT_FALSE(IsInstalled());
}

}  // namespace
}  // namespace launcher::test
