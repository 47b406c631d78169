// A run in which everything is wrong at once ends with the first thing that is looked at.

#include <filesystem>
#include <string>
#include <vector>

#include "tests/e2e/support/launcher_test.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

// The steps of a run that can end it, in their order.
enum Step {
    kCommandLine,
    kWebLibrary,
    kMarkers,
    kSearch,
    kVolumeQuery,
    kCopy,
    kAdministrator,
    kStart,
    kEnd
};

struct StepRow : Row {
    Step step;
    const char* box;  // how the text of its only, or first, box begins; none when empty
    DWORD exitCode;
};

class Situation : public LauncherTest, public testing::WithParamInterface<StepRow> {
  protected:
    // Runs with every step from this one on going wrong.
    LauncherRun RunWithTroubleFrom(Step first) {
        const auto goesWrong = [first](Step step) { return first <= step; };
        // A name of its own, for Wine's settings.
        const std::string name = "setup-trouble-" + std::string(GetParam().name) + ".exe";
        Media media(scratch.Dir() / "media", name);
        // An incomplete set of volumes is copied, which fails without one of the media's files.
        media.MakeSplit(2, "SET");
        if (goesWrong(kCopy)) std::filesystem::remove(media.Root() / "media.db");
        if (!goesWrong(kMarkers)) media.AddMarker("win_b64");
        if (!goesWrong(kSearch)) AddInstaller(media, goesWrong(kStart));
        if (goesWrong(kVolumeQuery)) variables["ZEPAdmODTMultiVolumes"] = "1";
        if (goesWrong(kAdministrator)) variables["ZEPProcessNotAdmin"] = "1";
        WineSettings settings(name);
        settings.OverrideDll("wininet", goesWrong(kWebLibrary) ? "builtin" : "");
        return Run(media,
                   goesWrong(kCommandLine) ? Arguments{"-wait", "-env"} : Arguments{"-wait"});
    }

  private:
    using Arguments = std::vector<std::string>;

    static void AddInstaller(Media& media, bool broken) {
        if (broken)
            media.AddFile("inst/win_b64/code/bin/ZEPInsAppliGUI.exe", "no program");
        else
            media.AddInstaller("win_b64");
    }
};

TEST_P(Situation, EndsAtTheFirstTrouble) {
    // The rows need an old web library, and Windows lets nobody exchange its own. Each refusal has
    // tests of its own that run on Windows; only their order is left to Wine.
    if (!IsWine()) GTEST_SKIP() << "only Wine's web library can be the wrong one";
    const LauncherRun run = RunWithTroubleFrom(GetParam().step);
    EXPECT_EQ(run.exitCode, GetParam().exitCode);
    const std::string expected = GetParam().box;
    const std::string box = run.boxes.empty() ? "" : run.boxes[0].text;
    EXPECT_EQ(box.substr(0, expected.size()), expected);
    EXPECT_EQ(run.boxes.empty(), expected.empty()) << box;
    EXPECT_EQ(run.report.has_value(), GetParam().step == kEnd);
}

// From row to row one trouble less. The query answers 0: a volume is missing.
INSTANTIATE_TEST_SUITE_P(
    Table, Situation,
    testing::Values(StepRow{{"CommandLine"}, kCommandLine, "Bad -env argument", 1},
                    StepRow{{"WebLibrary"}, kWebLibrary, "Internet Explorer 10 or later", 1},
                    StepRow{{"Markers"}, kMarkers, "This media is not for Windows", 1},
                    StepRow{{"Search"}, kSearch, "The installer is not found", 1},
                    StepRow{{"VolumeQuery"}, kVolumeQuery, "", 0},
                    StepRow{{"Copy"}, kCopy, "Cannot copy the installer to a temporary", 1},
                    StepRow{{"Administrator"}, kAdministrator, "The installer must be run from", 1},
                    StepRow{{"Start"}, kStart, "Setup failed to create process", 1},
                    StepRow{{"End"}, kEnd, "", 0}),
    RowName);

}  // namespace
}  // namespace launcher::test
