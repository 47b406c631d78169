// Which installer of which media is started.

#include <string>
#include <vector>

#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kNotFound[] =
    "The installer is not found, please read the file \"ReadMe_Windows.txt\".";

std::string Invalid(const std::string& folder) {
    return "Invalid Installer media, \"" + folder + "\\inst\\" + UsualOs() +
           "\\code\\bin\\ZEPInsAppliGUI.exe\" does not exist";
}

struct FlavourRow : Row {
    std::vector<std::string> present;
    const char* best;  // on 64-bit Windows

    // 32-bit Windows knows one flavour, which every row has.
    std::string Chosen() const { return Is64BitWindows() ? best : "intel_a"; }
};

class InstallerFlavour : public LauncherTableTest<FlavourRow> {};

TEST_P(InstallerFlavour, IsTheBestThatTheMediaHas) {
    Media media = EmptyMedia();
    for (const std::string& osFolder : GetParam().present)
        media.AddInstaller(osFolder);
    const LauncherRun run = Run(media);
    EXPECT_EQ(run.Installer().module, media.InstallerText(GetParam().Chosen()));
    EXPECT_EQ(run.Installer().Variable("ZEP_OS"), GetParam().Chosen());
}

// On 64-bit Windows the 64-bit flavours come before the 32-bit one.
INSTANTIATE_TEST_SUITE_P(
    Table, InstallerFlavour,
    testing::Values(FlavourRow{{"All"}, {"intel_a", "win_csa64", "win_b64"}, "win_b64"},
                    FlavourRow{{"BAndIntel"}, {"intel_a", "win_b64"}, "win_b64"},
                    FlavourRow{{"CsaAndIntel"}, {"intel_a", "win_csa64"}, "win_csa64"},
                    FlavourRow{{"Intel"}, {"intel_a"}, "intel_a"}),
    RowName);

class OnlyFor64Bit : public LauncherTableTest<const char*> {};

TEST_P(OnlyFor64Bit, IsRefusedOn32BitWindows) {
    // A 64-bit Windows says so to every program. Runs on the 32-bit Wine of tools/other-wines.sh.
    if (Is64BitWindows()) GTEST_SKIP() << "needs a 32-bit Windows";
    const LauncherRun run = Run(EmptyMedia().AddInstaller(GetParam()), {"-wait"});
    EXPECT_THAT(
        run, IsRefusedWith("This media cannot be installed on a 32-bit Windows operating system."));
    EXPECT_EQ(run.output, Lines({" INFO: 32-bit OS"}));
}

INSTANTIATE_TEST_SUITE_P(Flavours, OnlyFor64Bit, testing::Values("win_b64", "win_csa64"),
                         [](const auto& row) { return TestName(row.param); });

class SeparateInstaller : public LauncherTest {
  protected:
    // A folder with a separate installer, without a launcher; returns its text.
    std::string Separate(const std::string& name, const std::string& osFolder = UsualOs()) const {
        AddStandInInstaller(scratch.Dir() / name, osFolder);
        return scratch.Text(name);
    }
    std::string Module(const std::string& folder, const std::string& osFolder = UsualOs()) const {
        return folder + "\\inst\\" + osFolder + "\\code\\bin\\" + kGuiInstaller;
    }
    Media MarkedMedia() const { return EmptyMedia().AddMarker(UsualOs()); }
};

class MarkerFlavour : public SeparateInstaller, public testing::WithParamInterface<FlavourRow> {};

TEST_P(MarkerFlavour, IsTheOneLookedForElsewhere) {
    Media media = EmptyMedia();
    for (const std::string& osFolder : GetParam().present)
        media.AddMarker(osFolder);
    for (const char* osFolder : {"win_b64", "win_csa64", "intel_a"})
        Separate("other", osFolder);
    const LauncherRun run = Run(media, {"-installerPath", scratch.Text("other")});
    EXPECT_EQ(run.Installer().module, Module(scratch.Text("other"), GetParam().Chosen()));
    EXPECT_EQ(run.Installer().Variable("ZEP_OS"), GetParam().Chosen());
    EXPECT_THAT(
        run.output,
        HasSubstr(" INFO: " + media.Text("inst\\common\\" + GetParam().Chosen() + ".installos") +
                  " found, os " + GetParam().Chosen() + "\r\n"));
}

// The same order among the markers of a medium without an installer.
INSTANTIATE_TEST_SUITE_P(
    Table, MarkerFlavour,
    testing::Values(FlavourRow{{"All"}, {"intel_a", "win_csa64", "win_b64"}, "win_b64"},
                    FlavourRow{{"CsaAndIntel"}, {"intel_a", "win_csa64"}, "win_csa64"},
                    FlavourRow{{"Intel"}, {"intel_a"}, "intel_a"}),
    RowName);

TEST_F(SeparateInstaller, MediaWithoutAMarkerIsForAnotherSystem) {
    const Media media = EmptyMedia();
    const LauncherRun run = Run(media, {"-installerPath", Separate("other")});
    EXPECT_THAT(run, IsRefusedWith("This media is not for Windows operating system."));
    const std::string common = media.Text("inst\\common\\");
    EXPECT_EQ(run.output, Lines({" INFO: " + OsTrace(), " INFO: No installer in the current media.",
                                 " INFO: " + common + "intel_a.installos not found",
                                 " INFO: " + common + "win_b64.installos not found",
                                 " INFO: " + common + "win_csa64.installos not found"}));
    EXPECT_THAT(run.LeftInTemp(), testing::IsEmpty());
}

TEST_F(SeparateInstaller, OneMarkerFileMayStandForAll) {
    variables["ZEPAdmInstODTinstallOSpath"] = scratch.Write("any marker");
    const LauncherRun run = Run(EmptyMedia(), {"-installerPath", Separate("other")});
    EXPECT_EQ(run.Installer().Variable("ZEP_OS"), UsualOs());
}

TEST_F(SeparateInstaller, MissingMarkerFileStandsForAllToo) {
    variables["ZEPAdmInstODTinstallOSpath"] = scratch.Text("no marker");
    EXPECT_THAT(Run(MarkedMedia()),
                IsRefusedWith("This media is not for Windows operating system."));
}

// In the installer's media its folder "1" is the first volume, and is looked at first.
TEST_F(SeparateInstaller, FirstVolumeFolderComesFirst) {
    Separate("other");
    Separate("other/1");
    const LauncherRun run = Run(MarkedMedia(), {"-installerPath", scratch.Text("other")});
    EXPECT_EQ(run.Installer().module, Module(scratch.Text("other\\1")));
    EXPECT_EQ(run.Installer().Variable("MORInstaller"), scratch.Text("other\\1\\inst") + "\\");
}

TEST_F(SeparateInstaller, FolderMayEndInABackslash) {
    const LauncherRun run = Run(MarkedMedia(), {"-installerPath", Separate("other") + "\\"});
    EXPECT_EQ(run.Installer().module, Module(scratch.Text("other")));
    EXPECT_EQ(run.Installer().Variable("MORInstaller"), scratch.Text("other\\inst") + "\\");
}

TEST_F(SeparateInstaller, LastOfSeveralOptionsCounts) {
    Separate("a");
    Separate("b");
    const LauncherRun run = Run(
        MarkedMedia(), {"-installerPath", scratch.Text("a"), "-installerPath", scratch.Text("b")});
    EXPECT_EQ(run.Installer().module, Module(scratch.Text("b")));
}

TEST_F(SeparateInstaller, VariableNamesTheFolder) {
    variables["ZEP_TALVOR_Installer"] = Separate("other");
    const LauncherRun run = Run(MarkedMedia());
    EXPECT_EQ(run.Installer().module, Module(scratch.Text("other")));
}

TEST_F(SeparateInstaller, VariableMayBeGivenAsAnOption) {
    const LauncherRun run =
        Run(MarkedMedia(), {"-env", "ZEP_TALVOR_Installer=" + Separate("other")});
    EXPECT_EQ(run.Installer().module, Module(scratch.Text("other")));
}

TEST_F(SeparateInstaller, OptionComesBeforeTheVariable) {
    variables["ZEP_TALVOR_Installer"] = Separate("by variable");
    const LauncherRun run = Run(MarkedMedia(), {"-installerPath", Separate("by option")});
    EXPECT_EQ(run.Installer().module, Module(scratch.Text("by option")));
    EXPECT_THAT(run.BoxTexts(), ElementsAre());
}

TEST_F(SeparateInstaller, VariableHelpsOutForABadOption) {
    variables["ZEP_TALVOR_Installer"] = Separate("by variable");
    const LauncherRun run =
        Run(MarkedMedia(), {"-wait", "-installerPath", scratch.MakeDir("empty")});
    EXPECT_EQ(run.Installer().module, Module(scratch.Text("by variable")));
    EXPECT_THAT(run.BoxTexts(), ElementsAre(Invalid(scratch.Text("empty"))));
    EXPECT_EQ(run.exitCode, 0u);
}

class CancelledDialog : public SeparateInstaller {};

TEST_F(CancelledDialog, EndsTheSearch) {
    variables["ZEP_TALVOR_Installer"] = scratch.MakeDir("b");
    const LauncherRun run = Run(MarkedMedia(), {"-installerPath", scratch.MakeDir("a")});
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_THAT(run.BoxTexts(),
                ElementsAre(Invalid(scratch.Text("a")), Invalid(scratch.Text("b")), kNotFound));
    EXPECT_THAT(run.dialogs,
                ElementsAre("Select the folder of the separate media called QN_Installer for " +
                            UsualOs()));
    EXPECT_FALSE(run.report.has_value());
    EXPECT_THAT(run.LeftInTemp(), testing::IsEmpty());
}

TEST_F(SeparateInstaller, NobodyIsAskedWhenTheMediaHasItsInstaller) {
    const Media media = UsualMedia().AddMarker("win_csa64");
    variables["ZEP_TALVOR_Installer"] = Separate("other");
    const LauncherRun run = Run(media, {"-installerPath", scratch.Text("other")});
    EXPECT_EQ(run.Installer().module, media.InstallerText(UsualOs()));
    EXPECT_EQ(run.Installer().Variable("MORInstaller"), std::nullopt);
}

// Any value, also one that looks like no.
TEST_F(SeparateInstaller, InstallerOfTheMediaCanBeSetAside) {
    const Media media = UsualMedia().AddMarker(UsualOs());
    variables["ZEP_UseExternalInstaller"] = "0";
    const LauncherRun run = Run(media, {"-installerPath", Separate("other")});
    EXPECT_EQ(run.Installer().module, Module(scratch.Text("other")));
    EXPECT_THAT(run.output,
                HasSubstr(" INFO: Installer found in the current media, \"" +
                          media.InstallerText(UsualOs()) +
                          "\" but do not use it because of ZEP_UseExternalInstaller env var.\r\n"));
}

TEST_F(SeparateInstaller, MediaStaysTheCurrentOne) {
    const Media media = MarkedMedia();
    const LauncherRun run = Run(media, {"-installerPath", Separate("other")});
    EXPECT_THAT(run.Installer().Arguments(), ElementsAre("-CDpath", media.Text()));
    EXPECT_EQ(run.Installer().Variable("MORInst"), media.Text("inst"));
}

}  // namespace
}  // namespace launcher::test
