// The ways of use that change which installer is started and how: pipe server, "--odt", maintenance
// and software management.

#include <string>
#include <vector>

#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Modes : public LauncherTest {};

// Waits, says that nobody is there to be asked, and copies nothing.
TEST_F(Modes, PipeServerHasAnInstallerOfItsOwn) {
    const Media media = MediaToCopy().AddInstaller(UsualOs(), "ZEPInsPipeServer.exe");
    variables["STANDIN_EXIT"] = "5";
    const LauncherRun run = Run(media, {"--pipeserver", "x"});
    EXPECT_THAT(run, EndsQuietlyWith(5));
    EXPECT_EQ(run.Installer().module, media.InstallerText(UsualOs(), "ZEPInsPipeServer.exe"));
    EXPECT_THAT(run.Installer().Arguments(), ElementsAre("-CDpath", media.Text(), "x"));
    EXPECT_EQ(run.Installer().Variable("ZEPIns_IsInteractiveSession"), "0");
    EXPECT_THAT(run.LeftInTemp(), IsEmpty());
}

// Waits, and works on the media that a variable names.
TEST_F(Modes, OdtHasAnInstallerAndAMediaOfItsOwn) {
    const Media launcherMedia = UsualMedia();
    const Media media(scratch.Dir() / "current");
    AddStandInInstaller(media.Root(), UsualOs(), "ZEPInsAppliODT.exe");
    variables["CurrentMediaDir"] = "\"" + media.Text() + "\\\"";
    variables["STANDIN_EXIT"] = "7";
    const LauncherRun run = Run(launcherMedia, {"--odt", "x"});
    EXPECT_THAT(run, EndsQuietlyWith(7));
    EXPECT_EQ(run.Installer().module, media.InstallerText(UsualOs(), "ZEPInsAppliODT.exe"));
    EXPECT_THAT(run.Installer().Arguments(), ElementsAre("-CDpath", media.Text(), "x"));
    EXPECT_EQ(run.Installer().Variable("ZEPIns_IsInteractiveSession"), "1");
}

TEST_F(Modes, OdtMediaMayBeCopied) {
    const Media media = MediaToCopy().AddInstaller(UsualOs(), "ZEPInsAppliODT.exe");
    variables["CurrentMediaDir"] = media.Text();
    const LauncherRun run = Run(media, {"--odt"});
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstOriginalMediaDir"), media.Text());
    EXPECT_EQ(run.LeftInTemp().size(), 1u);
}

class Maintenance : public LauncherTableTest<const char*> {};

TEST_P(Maintenance, IsDoneFromTheMedia) {
    const Media media = MediaToCopy();
    const LauncherRun run = Run(media, {GetParam()});
    EXPECT_THAT(run.Installer().Arguments(), ElementsAre("-CDpath", media.Text(), GetParam()));
    EXPECT_EQ(run.Installer().module, media.InstallerText(UsualOs()));
    EXPECT_THAT(run.LeftInTemp(), IsEmpty());
}

// The same media is copied without either word.
INSTANTIATE_TEST_SUITE_P(Words, Maintenance, testing::Values("--mgt", "--uninst"),
                         [](const auto& row) { return TestName(row.param); });

struct SoftMgtRow : Row {
    std::vector<std::string> options;
    const char* variable;
    bool needsAdministrator;
};

class SoftwareManagement : public LauncherTableTest<SoftMgtRow> {};

TEST_P(SoftwareManagement, TellsTheInstallerTheAction) {
    std::vector<std::string> arguments = {"-SoftMgt", "x"};
    arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
    const Media media(scratch.Dir() / "outer" / "media");
    AddStandInInstaller(media.Root(), UsualOs());
    const LauncherRun run = Run(media, arguments);
    EXPECT_THAT(run.Installer().Arguments(),
                ElementsAre("x", "--mgt", scratch.Text(), "--var", GetParam().variable));
    EXPECT_EQ(run.Installer().Variable("ZEPSoftwareMgtSingleExec"), "1");
    EXPECT_EQ(run.Installer().Variable("ZEPAdmTUIValue_SoftwareMgt_Resume"), "!r");
}

TEST_P(SoftwareManagement, NeedsAnAdministratorOnlyToChangeSomething) {
    variables["ZEPProcessNotAdmin"] = "1";
    std::vector<std::string> arguments = {"-SoftMgt"};
    arguments.insert(arguments.end(), GetParam().options.begin(), GetParam().options.end());
    const LauncherRun run = Run(UsualMedia(), arguments);
    EXPECT_EQ(run.report.has_value(), !GetParam().needsAdministrator);
    EXPECT_EQ(run.BoxTexts().size(), GetParam().needsAdministrator ? 1u : 0u);
}

// "Check1" is the installer's word; of several actions the last one counts, yet one that only
// reads lets everybody in.
INSTANTIATE_TEST_SUITE_P(
    Table, SoftwareManagement,
    testing::Values(
        SoftMgtRow{{"List"}, {"-List"}, "Radio_ZEPSoftwareMgtCheck?List=true", false},
        SoftMgtRow{{"Check"}, {"-Check"}, "Radio_ZEPSoftwareMgtCheck?Check1=true", false},
        SoftMgtRow{{"Commit"}, {"-Commit"}, "Radio_ZEPSoftwareMgtCheck?Commit=true", true},
        SoftMgtRow{{"Rollback"}, {"-Rollback"}, "Radio_ZEPSoftwareMgtCheck?Rollback=true", true},
        SoftMgtRow{{"CheckThenCommit"},
                   {"-Check", "-Commit"},
                   "Radio_ZEPSoftwareMgtCheck?Commit=true",
                   false}),
    RowName);

TEST_F(Modes, OnlySoftwareManagementSetsItsVariables) {
    const LauncherRun run = Run(UsualMedia());
    EXPECT_EQ(run.Installer().Variable("ZEPSoftwareMgtSingleExec"), std::nullopt);
    EXPECT_EQ(run.Installer().Variable("ZEPAdmTUIValue_SoftwareMgt_Resume"), std::nullopt);
}

// It does not look at volumes, and what is not looked at is not copied.
TEST_F(Modes, SoftwareManagementLeavesASplitMediaAlone) {
    const LauncherRun run = Run(MediaToCopy(), {"-SoftMgt", "-List"});
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstVolumesCount"), std::nullopt);
    EXPECT_THAT(run.LeftInTemp(), IsEmpty());
}

}  // namespace
}  // namespace launcher::test
