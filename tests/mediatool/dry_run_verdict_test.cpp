// The verdict of a dry run: one line with the cause and the remedy.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "mediatool/dry_run/dry_run.h"
#include "tests/mediatool/rehearsing.h"

namespace launcher::test {
namespace {

using mediatool::DryRun;
using mediatool::Verdict;
using testing::HasSubstr;
using testing::StartsWith;

class VerdictTest : public Rehearsing {
  protected:
    // The summary of a run that comes to this verdict.
    std::string Summary(Verdict verdict, const SampleMedia& media,
                        std::vector<std::string> arguments = {}, Variables variables = {}) const {
        const DryRun run = Dry(media, std::move(arguments), std::move(variables));
        EXPECT_EQ(run.verdict, verdict) << run.summary;
        return run.summary;
    }

    const SampleMedia media_ = Startable();
};

TEST_F(VerdictTest, OfARunThatStartsTheInstaller) {
    EXPECT_EQ(Summary(Verdict::Starts, media_),
              "Starts the installer, exit code 0 at once: it does not wait for it.");
    EXPECT_EQ(Summary(Verdict::Starts, media_, {"-wait"}),
              "Starts the installer and waits for it; the exit code is the installer's.");
}

TEST_F(VerdictTest, OfAUserWhoIsNoAdministrator) {
    request_.machine.isAdministrator = false;
    EXPECT_EQ(Summary(Verdict::Refused, media_),
              "Refused, exit code 1, waits in a box: no administrator rights; run it as "
              "administrator, with highest privileges or as the system account");
    EXPECT_THAT(Summary(Verdict::Refused, media_, {"-env", "ZEPProcessNotAdmin="},
                        {{"ZEPProcessNotAdmin", "1"}}),
                HasSubstr(": no administrator rights; "));
}

TEST_F(VerdictTest, OfAVariableThatWasLeftSet) {
    EXPECT_EQ(Summary(Verdict::Refused, media_, {}, {{"ZEPProcessNotAdmin", "0"}}),
              "Refused, exit code 1, waits in a box: ZEPProcessNotAdmin is set; clear that "
              "variable");
    EXPECT_THAT(Summary(Verdict::Refused, media_, {"-env", "ZEPProcessNotAdmin"}),
                HasSubstr(": ZEPProcessNotAdmin is set; "));
    EXPECT_THAT(Summary(Verdict::Refused, media_, {"-env", "zepprocessnotadmin=1"}),
                HasSubstr(": ZEPProcessNotAdmin is set; "));
    SampleMedia without = Startable();
    without.Remove("inst/win_b64");
    EXPECT_THAT(Summary(Verdict::Refused, without, {}, {{"ZEPAdmInstODTinstallOSpath", "x"}}),
                HasSubstr(": ZEPAdmInstODTinstallOSpath is set; "));
    EXPECT_EQ(Summary(Verdict::Refused, Startable(Layout::Siblings), {},
                      {{"ZEPAdmODTMultiVolumes", "1"}}),
              "Starts nothing, exit code 3: ZEPAdmODTMultiVolumes is set; clear that variable");
    EXPECT_EQ(Summary(Verdict::Waits, media_, {}, {{"ZEP_TraceMsgBox", "1"}}),
              "Waits in 2 boxes, then starts the installer: ZEP_TraceMsgBox is set; clear that "
              "variable");
    EXPECT_EQ(Summary(Verdict::Waits, media_, {}, {{"DEBUGCMD_INSTALLK7", "1"}}),
              "Waits in a console; no installer runs: DEBUGCMD_INSTALLK7 is set; clear that "
              "variable");
}

TEST_F(VerdictTest, OfAWarningInABox) {
    request_.machine.isWindows8OrNewer = false;
    EXPECT_THAT(Summary(Verdict::Waits, media_),
                StartsWith("Waits in a box, then starts the installer: a Windows older than 8;"));
}

TEST_F(VerdictTest, OfAnInstallerOnAMediumOfItsOwn) {
    SampleMedia without = Startable();
    without.Remove("inst/win_b64");
    EXPECT_EQ(Summary(Verdict::Refused, without),
              "Refused, exit code 1, waits in the folder dialog and a box: no place holds the "
              "installer, or the dialog was cancelled; have the installer media at hand, or give "
              "its folder with -installerPath FOLDER");
    request_.machine.picked = media_.Text();
    EXPECT_EQ(Summary(Verdict::Waits, without),
              "Waits in the folder dialog, then starts the installer: the installer is on a medium "
              "of its own; give its folder with -installerPath FOLDER");
}

TEST_F(VerdictTest, OfAMistakeInTheCommandLine) {
    EXPECT_EQ(Summary(Verdict::Refused, media_, {"-env"}),
              "Refused, exit code 1, waits in a box: the option is the last word of the command "
              "line; give it its value");
}

TEST_F(VerdictTest, OfACopyThatFails) {
    SampleMedia incomplete = Incomplete();
    incomplete.Remove("media.db");
    EXPECT_THAT(Summary(Verdict::Refused, incomplete),
                StartsWith("Refused, exit code 1, waits in 2 boxes: GetType - " +
                           incomplete.Text("media.db") + " - "));
}

TEST_F(VerdictTest, OfAnInstallerThatWindowsCannotStart) {
    SampleMedia media = Startable();
    media.Remove(kInstallerOfMedia).MakeDir(kInstallerOfMedia);
    EXPECT_THAT(Summary(Verdict::Refused, media),
                StartsWith("Refused, exit code 1, waits in a box: Windows cannot start the "
                           "installer: it is a folder; "));
    EXPECT_EQ(
        Summary(Verdict::Refused, media, {}, {{"DEBUGCMD_INSTALLK7", "no-such-program"}}),
        "Refused, exit code 1, waits in a box: DEBUGCMD_INSTALLK7 is set; clear that variable");
    EXPECT_THAT(Summary(Verdict::Refused, media_, {std::string(33000, 'x')}),
                HasSubstr(": Windows cannot start the installer (code 206); "));
}

TEST_F(VerdictTest, StandsInTheFirstLine) {
    const DryRun run = Dry(media_, {"-wait"});
    EXPECT_THAT(mediatool::TextOf(run, false), StartsWith(run.summary + "\n"));
}

// Windows splits what is shown into the arguments that the run had.
TEST_F(VerdictTest, IsFollowedByTheCommandLineAsItIsTyped) {
    const DryRun run = Dry(media_, {"-wait", "", "a b\\", "a\"b\\\"", "tail\\"});
    EXPECT_THAT(mediatool::TextOf(run, false),
                HasSubstr("\n" + media_.Text("setup.exe") +
                          R"( -wait "" "a b\\" "a\"b\\\"" tail\)" + "\n"));
}

TEST_F(VerdictTest, AndAllElseOfAnOrdinaryMediaFitsOnOneScreen) {
    const std::string text = mediatool::TextOf(Dry(media_, {"-wait"}), false);
    EXPECT_LE(std::ranges::count(text, '\n'), 24) << text;
}

TEST_F(VerdictTest, TheRestIsThereWhenAskedFor) {
    const SampleMedia incomplete = Incomplete();
    const std::string all = mediatool::TextOf(Dry(incomplete), true);
    EXPECT_THAT(all, HasSubstr("\n  ZEP_BAK_PATH = "));
    EXPECT_THAT(all, HasSubstr("\n  " + temp_.Text("{UUID}\\media.db") + "\n"));
    EXPECT_THAT(all, HasSubstr("\n  missing  " + incomplete.Text("../3/3.txt") + "\n"));
    EXPECT_THAT(mediatool::TextOf(Dry(incomplete), false), Not(HasSubstr("ZEP_BAK")));
}

// A file that every ordinary medium lacks.
TEST_F(VerdictTest, SaysWhatIsMissingAsItShouldBe) {
    const std::string count = "  missing  " + media_.Text("inst\\volumes.txt");
    EXPECT_THAT(mediatool::TextOf(Dry(media_), false), HasSubstr(count + ", as it should be\n"));
}

TEST_F(VerdictTest, NamesTheVariablesThatAreSetAndTheirEffect) {
    const DryRun run = Dry(media_, {}, {{"ZEPAdmInstAllowNotAdminUser", "no"}});
    ASSERT_EQ(run.setVariables.size(), 2u);
    EXPECT_EQ(run.setVariables[1].name, "ZEPAdmInstAllowNotAdminUser");
    EXPECT_EQ(run.setVariables[1].value, "no");
    EXPECT_THAT(
        mediatool::TextOf(run, false),
        HasSubstr("\n  ZEPAdmInstAllowNotAdminUser = no: start the installer for a user who "
                  "is not an administrator\n"));
}

// Its rows of the variables that are read: the name, and what it means, without code and links.
TEST(ReadVariables, AreThoseOfTheReadme) {
    std::istringstream readme(ReadFile(FromUtf8(SOURCE_FOLDER) / "README.md"));
    std::string line;
    while (std::getline(readme, line) && !line.starts_with("| Read | Meaning |")) {
    }
    std::getline(readme, line);
    for (const mediatool::ReadVariable& variable : mediatool::kReadVariables) {
        std::getline(readme, line);
        std::erase(line, '`');
        const std::string row = "| " + std::string(variable.name) + " | " + variable.effect;
        EXPECT_THAT(line, testing::AnyOf(StartsWith(row + " |"), StartsWith(row + "; [")));
    }
    std::getline(readme, line);
    EXPECT_FALSE(line.starts_with("|")) << line;
}

}  // namespace
}  // namespace launcher::test
