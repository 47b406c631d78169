// The launcher's boxes: each is answered, and reported as it was.

#include <functional>

#include "mediatool/base/interruption.h"
#include "mediatool/media/remedies.h"
#include "mediatool/run/run.h"
#include "tests/mediatool/run/support/run_test.h"
#include "tests/support/isolated_test.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kDialogTitle[] = "Select the folder of the separate media called QN_Installer for ";
constexpr char kNotFound[] =
    "The installer is not found, please read the file \"ReadMe_Windows.txt\".";

// A message that a command line alone brings up.
struct ArgumentRow : Row {
    std::vector<std::string> arguments;
    std::string text;
};
class ArgumentBox : public RunTest, public testing::WithParamInterface<ArgumentRow> {};

TEST_P(ArgumentBox, IsAnsweredAndReported) {
    const WatchedOutcome outcome = Watched(UsualMedia(), GetParam().arguments);
    EXPECT_EQ(outcome.run.exitCode, 1u);
    EXPECT_THAT(outcome.BoxTexts(), ElementsAre(GetParam().text));
    EXPECT_TRUE(outcome.report["installer"].is_null());
}

INSTANTIATE_TEST_SUITE_P(
    Table, ArgumentBox,
    testing::Values(
        ArgumentRow{{"Env"}, {"-wait", "-env"}, "Bad -env argument"},
        ArgumentRow{{"Path"}, {"-wait", "-installerPath"}, "Bad -installerPath argument"},
        ArgumentRow{{"SoftMgt"},
                    {"-SoftMgt"},
                    "-SoftMgt must be used with another flag (either -List, -Check, -Commit or "
                    "-Rollback)."},
        ArgumentRow{{"List"}, {"-List"}, "-List must be used with the -SoftMgt flag."},
        ArgumentRow{{"Check"}, {"-Check"}, "-Check must be used with the -SoftMgt flag."},
        ArgumentRow{{"Commit"}, {"-Commit"}, "-Commit must be used with the -SoftMgt flag."},
        ArgumentRow{{"Rollback"}, {"-Rollback"}, "-Rollback must be used with the -SoftMgt flag."}),
    RowName);

class Box : public RunTest {};

TEST_F(Box, OfAUserWithoutRights) {
    variables["ZEPProcessNotAdmin"] = "1";
    EXPECT_THAT(Watched(UsualMedia(), {"-wait"}).BoxTexts(),
                ElementsAre("The installer must be run from an elevated Command Prompt ('Run as "
                            "administrator')"));
}

TEST_F(Box, OfAMediaForOtherSystems) {
    EXPECT_THAT(Watched(EmptyMedia(), {"-wait"}).BoxTexts(),
                ElementsAre("This media is not for Windows operating system."));
}

TEST_F(Box, OfAMediaForOther32BitSystems) {
    if (Is64BitWindows()) GTEST_SKIP() << "needs a 32-bit Windows";
    EXPECT_THAT(
        Watched(EmptyMedia().AddInstaller("win_b64"), {"-wait"}).BoxTexts(),
        ElementsAre("This media cannot be installed on a 32-bit Windows operating system."));
}

TEST_F(Box, OfAnInstallerThatIsNoProgram) {
    const Media media =
        EmptyMedia().AddFile("inst/" + UsualOs() + "/code/bin/ZEPInsAppliGUI.exe", "text");
    const std::string installer = media.InstallerText(UsualOs());
    const std::vector<std::string> boxes = Watched(media, {"-wait"}).BoxTexts();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_THAT(boxes[0], StartsWith("Setup failed to create process\n\"" + installer +
                                     "\" \"-CDpath\" \"" + media.Text() + "\"\nrc=193\nmsg="));
    EXPECT_EQ(boxes, RunToEnd(StartOf(media, {"-wait"})).BoxTexts());
}

TEST_F(Box, OfAnInstallerThatCrashes) {
    variables["STANDIN_EXIT"] = "0xC0000005";
    const WatchedOutcome outcome = Watched(UsualMedia(), {"-wait"});
    ASSERT_EQ(outcome.BoxTexts().size(), 1u);
    EXPECT_THAT(outcome.BoxTexts()[0], StartsWith("Cannot wait for process\n\""));
    EXPECT_EQ(outcome.run.exitCode, 1u);
}

TEST_F(Box, OfACopyThatFailsAndTheReason) {
    const Media media = UsualMedia().MakeSplit(2, "SET");
    stdfs::remove(media.Root() / "media.db");
    const std::vector<std::string> boxes = Watched(media, {"-wait"}).BoxTexts();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_THAT(
        boxes[0],
        StartsWith("Cannot copy the installer to a temporary directory: " + ToUtf8(temp) + "\\"));
    EXPECT_THAT(boxes[1], HasSubstr("media.db"));
}

// Longer than any buffer of fixed size would be made for.
TEST_F(Box, OfALongTextIsTakenDownWhole) {
    const std::string folder = "C:\\" + std::string(20'000, 'x') + "Größe";
    const std::vector<std::string> boxes =
        Watched(EmptyMedia().AddMarker(UsualOs()), {"-wait", "-installerPath", folder}).BoxTexts();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0], "Invalid Installer media, \"" + folder + "\\inst\\" + UsualOs() +
                            "\\code\\bin\\ZEPInsAppliGUI.exe\" does not exist");
    EXPECT_EQ(boxes[1], kNotFound);
}

// Traces in boxes, each of which waits.
TEST_F(Box, AfterBoxIsAnswered) {
    variables["ZEP_TraceMsgBox"] = "1";
    const Media media = UsualMedia();
    const WatchedOutcome outcome = Watched(media, {"-wait"});
    EXPECT_THAT(outcome.BoxTexts(),
                ElementsAre(OsTrace(), "Installer found in current media: \"" +
                                           media.InstallerText(UsualOs()) + "\"."));
    EXPECT_EQ(outcome.run.exitCode, 0u);
}

TEST_F(Box, IsToldWithItsRemedy) {
    variables["ZEPProcessNotAdmin"] = "1";
    const MediatoolRun run = Told(UsualMedia(), {"-wait"});
    EXPECT_THAT(run.output, HasSubstr("  box        The installer must be run from an elevated "));
    EXPECT_THAT(run.output, HasSubstr("\nWhat to do\n  The installer must be run from an elevated "
                                      "Command Prompt ('Run as administrator')\n    run it as"));
    EXPECT_THAT(run.output,
                HasSubstr("\nExit code\n  1: The launcher refuses; the message says why.\n"));
}

TEST_F(Box, OfTheInstallerIsLeftAlone) {
    const NamedEvent event;
    const Media media = ActingMedia("box Its own|wait " + event.Name());
    const WatchedOutcome outcome = Watched(media, {"-wait"}, {"--time-limit", "4s"});
    EXPECT_EQ(outcome.run.exitCode, 124u);
    EXPECT_THAT(outcome.BoxTexts(), ElementsAre());
    ASSERT_FALSE(outcome.report["installer"].is_null()) << testing::PrintToString(outcome);
    // The same box, answered as one of the process that it belongs to: it was there.
    BoxWatcher watcher(outcome.report["installer"]["processId"], {});
    const ULONGLONG end = GetTickCount64() + 10000;
    while (watcher.Boxes().empty() && GetTickCount64() < end)
        watcher.Poll();
    ASSERT_EQ(watcher.Boxes().size(), 1u);
    EXPECT_EQ(watcher.Boxes()[0].text, "Its own");
}

class Dialog : public RunTest {};

TEST_F(Dialog, IsCancelledWithAHint) {
    const Media media = EmptyMedia().AddMarker(UsualOs());
    const MediatoolRun run = Told(media, {"-wait"});
    EXPECT_THAT(run.output, HasSubstr("  dialog     " + (kDialogTitle + UsualOs()) + "\n"));
    EXPECT_THAT(run.output, HasSubstr(" -installerPath FOLDER."));
    EXPECT_EQ(run.exitCode, 1u);
}

TEST_F(Dialog, IsReportedBesideTheBoxes) {
    const WatchedOutcome outcome = Watched(EmptyMedia().AddMarker(UsualOs()), {"-wait"});
    const Json& boxes = outcome.report["boxes"];
    ASSERT_EQ(boxes.size(), 2u) << testing::PrintToString(outcome);
    EXPECT_EQ(boxes[0]["text"], kDialogTitle + UsualOs());
    EXPECT_EQ(boxes[0]["dialog"], true);
    EXPECT_EQ(boxes[1]["text"], kNotFound);
    EXPECT_EQ(boxes[1]["dialog"], false);
}

// Wine has these settings for the name of a program; so the launcher has one of its own here.
class OldSystem : public IsolatedTest {
  protected:
    void SetUp() override {
        if (!IsWine()) GTEST_SKIP() << "needs Wine, which can pose as another Windows";
        if (!IsElevated()) GTEST_SKIP() << "needs a console that runs as administrator";
    }

    std::vector<std::string> Boxes(const std::string& name) {
        Media media(folder_.Dir() / "media", name);
        media.AddInstaller(UsualOs());
        mediatool::RunRequest request;
        request.launcher = ToUtf8(media.Launcher());
        request.arguments = {"-wait"};
        struct : mediatool::Witness {
            void Started(const mediatool::RunRequest&) override {}
            void Saw(const std::vector<mediatool::SeenLine>&) override {}
            void Saw(const mediatool::AnsweredBox&) override {}
            void TimePassed(std::uint64_t) override {}
            bool TakesMore() override { return true; }
        } nobody;
        const mediatool::Interruption interruption;
        std::vector<std::string> texts;
        for (const auto& box : mediatool::RunWatched(request, interruption, nobody).boxes)
            texts.push_back(box.box.text);
        return texts;
    }

  private:
    TemporaryFolder folder_;
};

TEST_F(OldSystem, IsWarnedOfInABox) {
    WineSettings settings("run-on-7.exe");
    settings.PoseAs("win7");
    EXPECT_THAT(Boxes("run-on-7.exe"),
                ElementsAre("This version of Windows is not supported anymore.\nPlease check the "
                            "certified platforms in the Program Directory."));
}

TEST_F(OldSystem, WebLibraryIsRefusedInABox) {
    WineSettings settings("run-old-web.exe");
    settings.OverrideDll("wininet", "builtin");
    EXPECT_THAT(Boxes("run-old-web.exe"),
                ElementsAre("Internet Explorer 10 or later is required to run the installer. "
                            "Please install it and try again."));
}

}  // namespace
}  // namespace launcher::test
