// The progress of a run, line by line, and in boxes.

#include <string>
#include <vector>

#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A run with all there is to say: a split medium that cannot be completed, and an installer that is
// found at the last place.
class Trace : public LauncherTest {
  protected:
    LauncherRun RunWithEverything() {
        Media media = MediaToTrace();
        variables["ZEP_TALVOR_Installer"] = scratch.Text("other");
        variables["ZEPProcessNotAdmin"] = "1";
        variables["ZEPAdmInstAllowNotAdminUser"] = "1";
        AddStandInInstaller(scratch.Dir() / "other", UsualOs());
        return Run(media, {"-wait", "-installerPath", scratch.MakeDir("empty")});
    }
    Media MediaToTrace() const {
        Media media = EmptyMedia();
        return media.AddMarker(UsualOs()).MakeSplit(3, "SET");
    }
    std::string InstallerIn(const std::string& folder) const {
        return "\"" + scratch.Text(folder) + "\\inst\\" + UsualOs() +
               "\\code\\bin\\ZEPInsAppliGUI.exe\"";
    }
    std::vector<std::string> Search() const {
        return {
            OsTrace(),
            "No installer in the current media.",
            scratch.Text("media\\inst\\common\\" + UsualOs() + ".installos") + " found, os " +
                UsualOs(),
            "Argument \"-installerPath\" found and its value is \"" + scratch.Text("empty") + "\".",
            "Installer executable " + InstallerIn("empty\\1") +
                " does not exist, trying without sub dir \"1\"",
            "Environment variable ZEP_TALVOR_Installer is defined and its value is \"" +
                scratch.Text("other") + "\".",
            "Installer executable " + InstallerIn("other\\1") +
                " does not exist, trying without sub dir \"1\"",
            "Installer Media: " + InstallerIn("other"),
            "This media is composed of 3 volumes."};
    }
    std::string VolumeFound() const { return "Volume 1 found in: " + scratch.Text("media"); }
    std::string InvalidMedia() const {
        return "Invalid Installer media, " + InstallerIn("empty") + " does not exist";
    }
};

TEST_F(Trace, GoesToTheStreamsLineByLine) {
    const LauncherRun run = RunWithEverything();
    std::vector<std::string> lines;
    for (const std::string& text : Search())
        lines.push_back(" INFO: " + text);
    lines.push_back("       " + VolumeFound());
    lines.push_back(" INFO: The user is not admin, but continue.");
    EXPECT_EQ(run.output, Lines(lines));
    EXPECT_EQ(run.errors,
              Lines({" WARN: This media is composed of multiple volumes.",
                     " WARN: If it is not done already, please copy each volume on a local hard "
                     "drive before starting the installation.",
                     " WARN: Not doing so might result in the installation leaving temporary files "
                     "behind."}));
    EXPECT_THAT(run.BoxTexts(), ElementsAre(InvalidMedia()));
}

// Only the three warnings stay on their stream.
TEST_F(Trace, GoesToBoxesOnRequest) {
    variables["ZEP_TraceMsgBox"] = "1";
    const LauncherRun run = RunWithEverything();
    std::vector<std::string> boxes = Search();
    boxes.insert(boxes.begin() + 5, InvalidMedia());
    boxes.push_back(VolumeFound());
    boxes.push_back("The user is not admin, but continue.");
    EXPECT_EQ(run.BoxTexts(), boxes);
    EXPECT_EQ(run.output, "");
    EXPECT_THAT(run.errors, testing::StartsWith(" WARN: This media is composed of multiple"));
    EXPECT_EQ(run.exitCode, 0u);
}

TEST_F(Trace, OfAPlainRunIsShort) {
    const Media media = UsualMedia();
    const LauncherRun run = Run(media, {"-wait"});
    EXPECT_EQ(run.output,
              Lines({" INFO: " + OsTrace(), " INFO: Installer found in current media: \"" +
                                                media.InstallerText(UsualOs()) + "\"."}));
    EXPECT_EQ(run.errors, "");
}

struct SwitchRow : Row {
    std::vector<std::string> arguments;
    bool inBoxes;
};

class TraceSwitch : public LauncherTableTest<SwitchRow> {};

TEST_P(TraceSwitch, IsOnForOneCharacter) {
    const LauncherRun run = Run(UsualMedia(), GetParam().arguments);
    EXPECT_EQ(run.boxes.size(), GetParam().inBoxes ? 2u : 0u);
    EXPECT_EQ(run.output.empty(), GetParam().inBoxes);
}

// Whatever the character is; a longer value is off. It may come from the command line, which is
// read before the first message.
INSTANTIATE_TEST_SUITE_P(
    Table, TraceSwitch,
    testing::Values(SwitchRow{{"Zero"}, {"-env", "ZEP_TraceMsgBox=0"}, true},
                    SwitchRow{{"Letter"}, {"-env", "ZEP_TraceMsgBox=x"}, true},
                    SwitchRow{{"NameAlone"}, {"-env", "ZEP_TraceMsgBox"}, true},
                    SwitchRow{{"Two"}, {"-env", "ZEP_TraceMsgBox=10"}, false},
                    SwitchRow{{"Yes"}, {"-env", "ZEP_TraceMsgBox=yes"}, false},
                    // Two bytes in UTF-8.
                    SwitchRow{{"NonAscii"}, {"-env", "ZEP_TraceMsgBox=é"}, false}),
    RowName);

}  // namespace
}  // namespace launcher::test
