// RunLauncher on fakes of its steps: which run, in which order, with what.

#include "launcher/driver.h"

#include <string>
#include <vector>

#include "fs/environment.h"
#include "installer/installer_environment.h"
#include "installer/launch.h"
#include "launcher/choose_installer.h"
#include "launcher/installer_command_line.h"
#include "launcher/remove_script.h"
#include "launcher/requirements.h"
#include "launcher/temporary_copy.h"
#include "media/volumes.h"
#include "tests/support/isolated_test.h"
#include "tests/support/options.h"

namespace launcher {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// What the steps come to.
struct FakeSteps {
    bool hasWebLibrary = true;
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
}

int ResolveVolumes(LaunchOptions&, std::vector<std::string>& volumes) {
    test::Record("volumes");
    volumes = steps.volumes;
    return steps.volumeCount;
}

void ExportVolumePaths(const std::vector<std::string>& volumes) {
    for (const std::string& volume : volumes)
        test::Record("export " + volume);
}

std::string NewTemporaryFolderName() {
    test::Record("name a temporary folder");
    return "T:\\new\\";
}

void CopyInstallerToTemporaryFolder(LaunchOptions& options, const std::string& temporaryDir) {
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
        SetEnvVar("ZEPAdmODTMultiVolumes", "");
    }

    LaunchOptions options_ = test::ParseOptions({});
};

TEST_F(DriverTest, RunsFromTheMediaStepByStep) {
    EXPECT_EQ(RunLauncher(options_), 0);
    EXPECT_THAT(test::journal,
                ElementsAre("web library", "Windows version", "choose the installer", "volumes",
                            "name a temporary folder", "copy to T:\\new\\", "environment",
                            "command line", "launch the command line"));
}

TEST_F(DriverTest, RunsFromACopyWithAScriptThatRemovesIt) {
    steps.copies = true;
    EXPECT_EQ(RunLauncher(options_), 0);
    EXPECT_THAT(
        test::journal,
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
    EXPECT_THAT(test::journal, ElementsAre("web library"));
}

TEST_F(DriverTest, AnswersOnlyTheNumberOfVolumesWhenAsked) {
    for (const int count : {0, 1, 3}) {
        test::journal.clear();
        SetEnvVar("ZEPAdmODTMultiVolumes", "no");
        steps.volumeCount = count;
        steps.volumes = {"V:\\2", "V:\\3"};
        EXPECT_EQ(RunLauncher(options_), count);
        EXPECT_THAT(test::journal, ElementsAre("web library", "Windows version",
                                               "choose the installer", "volumes"));
    }
}

// Only when they lie in several folders.
TEST_F(DriverTest, TellsTheInstallerWhereTheVolumesAre) {
    steps.volumes = {"V:\\2", "W:\\3"};
    for (const int count : {0, 1, 2, 3}) {
        test::journal.clear();
        steps.volumeCount = count;
        RunLauncher(options_);
        const std::vector<std::string> next(test::journal.begin() + 4, test::journal.begin() + 6);
        if (count > 1)
            EXPECT_THAT(next, ElementsAre("export V:\\2", "export W:\\3"));
        else
            EXPECT_EQ(next.front(), "name a temporary folder");
    }
}

// The user is warned only of a copy that the launcher waits for, whatever the number of volumes.
TEST_F(DriverTest, WarnsOfVolumesOnlyWithACopyThatIsWaitedFor) {
    const std::vector<std::string> warnings = {
        "warning on console: This media is composed of multiple volumes.",
        "warning on console: If it is not done already, please copy each volume on a local hard "
        "drive before starting the installation.",
        "warning on console: Not doing so might result in the installation leaving temporary files "
        "behind."};
    for (const bool copies : {true, false}) {
        for (const bool waits : {true, false}) {
            test::journal.clear();
            steps.copies = copies;
            options_.wait = waits;
            RunLauncher(options_);
            std::vector<std::string> end = {"command line"};
            if (copies) end.push_back("script in T:\\new\\");
            if (copies && waits) end.insert(end.end(), warnings.begin(), warnings.end());
            end.push_back("launch the command line");
            EXPECT_THAT(std::vector(test::journal.begin() + 7, test::journal.end()),
                        ElementsAreArray(end));
        }
    }
}

}  // namespace
}  // namespace launcher
