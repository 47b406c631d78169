// What the launcher asks of the system: the level of its web library and its version.

#include <string>
#include <vector>

#include "tests/e2e/support/launcher_test.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

constexpr char kWebRefusal[] =
    "Internet Explorer 10 or later is required to run the installer. Please install it and try "
    "again.";
constexpr char kVersionWarning[] =
    "This version of Windows is not supported anymore.\nPlease check the certified platforms in "
    "the Program Directory.";

class OnWine : public LauncherTest {
  protected:
    void SetUp() override {
        LauncherTest::SetUp();
        // On Windows its version and its web library are what they are; the tests of platform/
        // answer for other ones there.
        if (!IsWine()) GTEST_SKIP() << "needs Wine, which can pose as another Windows";
    }
    // A medium whose launcher has a name of its own, for settings that hold for this name alone.
    Media MediaFor(const std::string& launcherName) const {
        Media media(scratch.Dir() / "media", launcherName);
        return media.AddInstaller(UsualOs());
    }
};

class WebLibrary : public OnWine {};

// Wine's own lacks the function that is asked for.
TEST_F(WebLibrary, OldOneIsRefused) {
    WineSettings settings("setup-old-web.exe");
    settings.OverrideDll("wininet", "builtin");
    const LauncherRun run = Run(MediaFor("setup-old-web.exe"), {"-wait"});
    EXPECT_THAT(run, IsRefusedWith(kWebRefusal));
    EXPECT_EQ(run.output + run.errors, "");
    EXPECT_THAT(run.LeftInTemp(), testing::IsEmpty());
}

TEST_F(WebLibrary, NewOnePasses) {
    WineSettings settings("setup-new-web.exe");
    settings.OverrideDll("wininet", "native");
    const SystemDll library("wininet.dll", BuiltFile(WININET_STUB));
    EXPECT_THAT(Run(MediaFor("setup-new-web.exe"), {"-wait"}), EndsQuietlyWith(0));
}

TEST_F(WebLibrary, MissingOnePasses) {
    WineSettings settings("setup-no-web.exe");
    settings.OverrideDll("wininet", "");
    EXPECT_THAT(Run(MediaFor("setup-no-web.exe"), {"-wait"}), EndsQuietlyWith(0));
}

struct VersionRow : Row {
    std::vector<std::string> boxes;
};

class WindowsVersion : public OnWine, public testing::WithParamInterface<VersionRow> {};

TEST_P(WindowsVersion, IsWarnedOfButAccepted) {
    const std::string name = "setup-" + std::string(GetParam().name) + ".exe";
    WineSettings settings(name);
    settings.PoseAs(GetParam().name);
    variables["STANDIN_EXIT"] = "9";
    const LauncherRun run = Run(MediaFor(name), {"-wait"});
    EXPECT_EQ(run.BoxTexts(), GetParam().boxes);
    EXPECT_EQ(run.exitCode, 9u);
    EXPECT_EQ(run.Installer().Variable("ZEPIns_HasElevatedPrivileges"), "1");
}

// Windows 8 is the first that is supported.
INSTANTIATE_TEST_SUITE_P(Table, WindowsVersion,
                         testing::Values(VersionRow{{"winxp64"}, {kVersionWarning}},
                                         VersionRow{{"vista"}, {kVersionWarning}},
                                         VersionRow{{"win7"}, {kVersionWarning}},
                                         VersionRow{{"win8"}, {}}, VersionRow{{"win81"}, {}},
                                         VersionRow{{"win10"}, {}}),
                         RowName);

TEST_F(WebLibrary, IsAskedForBeforeTheVersion) {
    WineSettings settings("setup-old-all.exe");
    settings.OverrideDll("wininet", "builtin");
    settings.PoseAs("win7");
    EXPECT_THAT(Run(MediaFor("setup-old-all.exe")), IsRefusedWith(kWebRefusal));
}

}  // namespace
}  // namespace launcher::test
