// RunLauncher on fakes of its steps: which run, in which order, with what.

#include "launcher/driver.h"

#include "fs/environment.h"
#include "installer/installer_environment.h"
#include "installer/launch.h"
#include "launcher/choose_installer.h"
#include "launcher/installer_command_line.h"
#include "launcher/remove_script.h"
#include "launcher/requirements.h"
#include "launcher/temporary_copy.h"
#include "media/volumes.h"
#include "tests/launcher/base/options_fields.h"
#include "tests/launcher/fake_messages.h"
#include "tests/launcher/isolated_test.h"
#include "tests/launcher/journal.h"

namespace launcher {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// What the steps come to.
struct FakeSteps {
    bool hasWebLibrary = true;
    bool findsInstaller = true;
    int volumeCount = 1;
    std::vector<std::string> volumes;
    bool copies = false;
    std::int32_t launchResult = 0;
};
FakeSteps steps;

}  // namespace

bool CheckWebLibrary(const LaunchOptions&) {
    test::Record("web library");
    return steps.hasWebLibrary;
}

void WarnOfOldWindows(const LaunchOptions&) {
    test::Record("Windows version");
}

void ChooseInstaller(LaunchOptions&) {
    test::Record("choose the installer");
    if (!steps.findsInstaller) throw test::ProcessExit{1};
}

int ResolveVolumes(LaunchOptions&, std::vector<std::string>& volumes) {
    test::Record("volumes");
    volumes = steps.volumes;
    return steps.volumeCount;
}

std::string NewTemporaryDirName() {
    test::Record("name a temporary folder");
    return "T:\\new\\";
}

void CopyInstallerToTemporaryDir(LaunchOptions& options, const std::string& temporaryDir) {
    test::Record("copy to " + temporaryDir);
    options.temporaryCopyMade = steps.copies;
}

void PrepareInstallerEnvironment(const LaunchOptions& options) {
    test::Record(options.temporaryCopyMade ? "environment of the copy" : "environment");
}

std::string BuildInstallerCommandLine(LaunchOptions&) {
    test::Record("command line");
    return "the command line";
}

void WriteRemoveScript(const std::string& temporaryDir) {
    test::Record("script in " + temporaryDir);
}

std::int32_t LaunchInstaller(const LaunchOptions&, const std::string& commandLine) {
    test::Record("launch " + commandLine);
    return steps.launchResult;
}

namespace {

class DriverTest : public test::IsolatedTest {
  protected:
    DriverTest() {
        steps = {};
        test::ClearJournal();
        SetEnvVar("ZEPAdmODTMultiVolumes", "");
    }

    LaunchOptions options_ = test::ParseOptions({});
};

TEST_F(DriverTest, RunsFromTheMediaStepByStep) {
    EXPECT_EQ(RunLauncher(options_), 0);
    EXPECT_THAT(test::Journal(),
                ElementsAre("web library", "Windows version", "choose the installer", "volumes",
                            "name a temporary folder", "copy to T:\\new\\", "environment",
                            "command line", "launch the command line"));
}

TEST_F(DriverTest, RunsFromACopyWithAScriptThatRemovesIt) {
    steps.copies = true;
    EXPECT_EQ(RunLauncher(options_), 0);
    EXPECT_THAT(
        test::Journal(),
        ElementsAre("web library", "Windows version", "choose the installer", "volumes",
                    "name a temporary folder", "copy to T:\\new\\", "environment of the copy",
                    "command line", "script in T:\\new\\", "launch the command line"));
}

TEST_F(DriverTest, HandsBackTheResultOfTheLaunch) {
    for (const std::int32_t result : {0, 1, 3010, 0x7FFFFFFF}) {
        steps.launchResult = result;
        EXPECT_EQ(RunLauncher(options_), result);
    }
}

TEST_F(DriverTest, EndsWithoutTheWebLibrary) {
    steps.hasWebLibrary = false;
    EXPECT_EQ(RunLauncher(options_), 1);
    EXPECT_THAT(test::Journal(), ElementsAre("web library"));
}

TEST_F(DriverTest, EndsWhereThereIsNoInstaller) {
    steps.findsInstaller = false;
    EXPECT_THROW(RunLauncher(options_), test::ProcessExit);
    EXPECT_THAT(test::Journal(),
                ElementsAre("web library", "Windows version", "choose the installer"));
}

TEST_F(DriverTest, AnswersOnlyTheNumberOfVolumesWhenAsked) {
    for (const int count : {0, 1, 3}) {
        test::ClearJournal();
        SetEnvVar("ZEPAdmODTMultiVolumes", "no");
        steps.volumeCount = count;
        steps.volumes = {"V:\\2", "V:\\3"};
        EXPECT_EQ(RunLauncher(options_), count);
        EXPECT_THAT(test::Journal(), ElementsAre("web library", "Windows version",
                                                 "choose the installer", "volumes"));
        EXPECT_EQ(GetEnvVar("ZEPAdmInstVolumePath_2"), "");
    }
}

// A number of volumes, the list that goes with it, and the variables from the one of volume 2 on.
struct VolumesCase {
    int count;
    std::vector<std::string> volumes;
    std::vector<std::string> variables;
};

void PrintTo(const VolumesCase& row, std::ostream* out) {
    *out << row.count << " " << testing::PrintToString(row.volumes);
}

class DriverVolumes : public DriverTest, public testing::WithParamInterface<VolumesCase> {};

TEST_P(DriverVolumes, AreToldToTheInstallerFromTheSecondOn) {
    steps.volumeCount = GetParam().count;
    steps.volumes = GetParam().volumes;
    RunLauncher(options_);
    std::vector<std::string> variables;
    for (std::size_t i = 0; i < GetParam().variables.size(); ++i)
        variables.push_back(GetEnvVar("ZEPAdmInstVolumePath_" + std::to_string(i + 1)));
    EXPECT_EQ(variables, GetParam().variables);
}

const VolumesCase kVolumes[] = {
    {0, {}, {"", "", "", ""}},
    {1, {}, {"", "", "", ""}},
    {1, {"V:\\2"}, {"", "", "", ""}},
    {2, {"V:\\2"}, {"", "V:\\2", "", ""}},
    {3, {"V:\\2", "W:\\3"}, {"", "V:\\2", "W:\\3", ""}},
    {10,
     {"2", "3", "4", "5", "6", "7", "8", "9", "10"},
     {"", "2", "3", "4", "5", "6", "7", "8", "9", "10", ""}},
};

INSTANTIATE_TEST_SUITE_P(All, DriverVolumes, testing::ValuesIn(kVolumes));

// Whether a copy was made, and whether the launcher waits: the person is warned only with both,
// whatever the number of volumes.
TEST_F(DriverTest, WarnsOfVolumesOnlyWithACopyThatIsWaitedFor) {
    const std::vector<std::string> warnings = {
        "warning on console: This media is composed of multiple volumes.",
        "warning on console: If it is not done already, please copy each volume on a local hard "
        "drive before starting the installation.",
        "warning on console: Not doing so might result in the installation leaving temporary files "
        "behind."};
    for (const auto& [copies, waits] :
         {std::pair(true, true), {true, false}, {false, true}, {false, false}}) {
        for (const int volumeCount : {0, 1, 2}) {
            test::ClearJournal();
            steps.copies = copies;
            steps.volumeCount = volumeCount;
            options_.wait = waits;
            RunLauncher(options_);
            std::vector<std::string> end = {"command line"};
            if (copies) end.push_back("script in T:\\new\\");
            if (copies && waits) end.insert(end.end(), warnings.begin(), warnings.end());
            end.push_back("launch the command line");
            EXPECT_THAT(std::vector(test::Journal().begin() + 7, test::Journal().end()),
                        ElementsAreArray(end));
        }
    }
}

}  // namespace
}  // namespace launcher
