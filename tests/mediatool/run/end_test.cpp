// How a watched run ends: with the launcher, at the time limit, at Ctrl+C.

#include "tests/mediatool/run/support/run_test.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Of a process that Ctrl+C meets before its first line: Wine has no code of its own for that.
DWORD InterruptedBeforeItBegan() {
    constexpr DWORD kControlCExit = 0xC000013A;  // STATUS_CONTROL_C_EXIT
    return IsWine() ? 0 : kControlCExit;
}

class End : public RunTest {
  protected:
    // An installer that waits, with a program that it has started.
    Media WaitingMedia(const NamedEvent& event) {
        return ActingMedia("child wait " + event.Name() + "|wait " + event.Name());
    }

    // What of the media is running still.
    std::size_t Running() const { return RunningBelow(scratch.Dir()).size(); }

    bool WaitForProcesses(std::size_t count) const {
        for (int i = 0; i < 1000 && Running() != count; ++i)
            Sleep(20);
        return Running() == count;
    }
};

class ExitCode : public RunTest, public testing::WithParamInterface<const char*> {};

TEST_P(ExitCode, IsTheLaunchersOwnWhole) {
    variables["STANDIN_EXIT"] = GetParam();
    const WatchedOutcome outcome = Watched(StandInAsLauncher(), {"-wait"});
    const auto code = static_cast<DWORD>(std::stoul(GetParam(), nullptr, 0));
    EXPECT_EQ(outcome.run.exitCode, code);
    EXPECT_EQ(outcome.report["exitCode"], code);
    EXPECT_EQ(outcome.report["endedBy"], "launcher");
}

// Such a program ends at once: before it is watched, or nearly.
INSTANTIATE_TEST_SUITE_P(Codes, ExitCode,
                         testing::Values("0", "1", "3010", "124", "259", "0x7FFFFFFF", "0x80000000",
                                         "0xC0000005", "0xFFFFFFFF"),
                         [](const auto& row) { return std::string(row.param); });

TEST_F(End, OfAnInstallerThatIsWaitedForIsTheLaunchers) {
    const Media media = ActingMedia("exit 3010");
    const WatchedOutcome outcome = Watched(media, {"-wait"});
    EXPECT_EQ(outcome.run.exitCode, 3010u);
    EXPECT_EQ(outcome.run.errors, "");
}

TEST_F(End, OfAVolumeQueryGivesTheNumber) {
    const MediatoolRun run = Told(UsualMedia(), {"-wait", "-env", "ZEPAdmODTMultiVolumes"});
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_THAT(run.output, HasSubstr("\n  1: The number of volumes, which "));
}

TEST_F(End, LeavesAnInstallerThatIsNotWaitedFor) {
    const NamedEvent event;
    const WatchedOutcome outcome = Watched(WaitingMedia(event), {});
    EXPECT_EQ(outcome.run.exitCode, 0u);
    EXPECT_EQ(outcome.run.errors,
              "mediatool: Without -wait, only the launcher is waited for, not the installer.\n");
    ASSERT_FALSE(outcome.report["installer"].is_null());
    EXPECT_EQ(outcome.report["installer"]["stillRunning"], true);
    EXPECT_THAT(RunningBelow(scratch.Dir()),
                testing::Contains(outcome.report["installer"]["processId"].get<DWORD>()));
}

TEST_F(End, AtTheTimeLimitLeavesTheInstaller) {
    const NamedEvent event;
    const WatchedOutcome outcome = Watched(WaitingMedia(event), {"-wait"}, {"--time-limit", "4s"});
    EXPECT_EQ(outcome.run.exitCode, 124u);
    EXPECT_EQ(outcome.report["exitCode"], 124);
    EXPECT_EQ(outcome.report["endedBy"], "time-limit");
    ASSERT_FALSE(outcome.report["launcher"].is_null());
    EXPECT_EQ(outcome.report["launcher"]["stillRunning"], false);
    EXPECT_TRUE(outcome.report["error"].is_null());
    EXPECT_GE(outcome.report["seconds"], 4.0);
    ASSERT_FALSE(outcome.report["installer"].is_null());
    EXPECT_EQ(outcome.report["installer"]["stillRunning"], true);
    EXPECT_EQ(Running(), 2u);
}

TEST_F(End, AtTheTimeLimitNamesTheInstaller) {
    const NamedEvent event;
    const MediatoolRun run = Told(WaitingMedia(event), {"-wait"}, {"--time-limit", "4s"});
    EXPECT_THAT(run.output, HasSubstr("\n  124: The time limit is over: the launcher was ended; "
                                      "the installer, process "));
    EXPECT_THAT(run.output, HasSubstr(", goes on.\n"));
}

TEST_F(End, AtTheTimeLimitOfAllSaysThatTheInstallerWasEnded) {
    const NamedEvent event;
    const MediatoolRun run =
        Told(WaitingMedia(event), {"-wait"}, {"--time-limit", "4s", "--end-installer"});
    EXPECT_THAT(run.output, HasSubstr(", was ended too.\n"));
}

TEST_F(End, AtTheTimeLimitCanBeThatOfAll) {
    const NamedEvent event;
    const WatchedOutcome outcome =
        Watched(WaitingMedia(event), {"-wait"}, {"--time-limit", "4s", "--end-installer"});
    EXPECT_EQ(outcome.run.exitCode, 124u);
    EXPECT_EQ(Running(), 0u);
    EXPECT_EQ(outcome.report["installer"]["stillRunning"], false);
}

TEST_F(End, OfTheLauncherSparesTheInstallerDespiteTheOption) {
    const NamedEvent event;
    Watched(WaitingMedia(event), {}, {"--end-installer"});
    EXPECT_TRUE(WaitForProcesses(2));
}

// Whatever happens to mediatool itself.
TEST_F(End, OfMediatoolLeavesTheLauncher) {
    const NamedEvent event;
    const Media media =
        ActingMedia("wait " + event.Name() + "|lines 1000|note " + scratch.Text("note"));
    {
        const MediatoolProcess process = Started(media, {"-wait"}, {"--end-installer"});
        ASSERT_TRUE(WaitForProcesses(2));
        process.Kill();
    }
    EXPECT_EQ(Running(), 2u);
    event.Set();
    EXPECT_TRUE(NoneRunsBelow(scratch.Dir()));
    EXPECT_EQ(ReadFile(scratch.Dir() / "note"), "100000");
}

TEST_F(End, AtCtrlCLeavesTheInstaller) {
    const NamedEvent event;
    const MediatoolProcess process = Started(WaitingMedia(event), {"-wait"}, {"--json"});
    ASSERT_TRUE(WaitForProcesses(3));
    ASSERT_TRUE(process.Interrupt());
    const MediatoolRun run = process.Finish();
    EXPECT_EQ(run.exitCode, 130u);
    EXPECT_EQ(Json::parse(run.output)["endedBy"], "interrupt");
    EXPECT_EQ(Running(), 2u);
}

TEST_F(End, AtCtrlCCanBeThatOfAll) {
    const NamedEvent event;
    const MediatoolProcess process =
        Started(WaitingMedia(event), {"-wait"}, {"--end-installer", "--json"});
    ASSERT_TRUE(WaitForProcesses(3));
    ASSERT_TRUE(process.Interrupt());
    const MediatoolRun run = process.Finish();
    EXPECT_EQ(run.exitCode, 130u);
    EXPECT_EQ(Running(), 0u);
    EXPECT_EQ(Json::parse(run.output)["installer"]["stillRunning"], false);
}

// Before the launcher runs, while it asks and copies, while a box or the dialog is there: whenever
// it comes, it ends the run.
class CtrlC : public End, public testing::WithParamInterface<int> {};

TEST_P(CtrlC, EndsTheRunInEveryPhase) {
    variables["ZEP_TraceMsgBox"] = "1";
    const Media media = EmptyMedia().AddMarker(UsualOs());
    const MediatoolRun run =
        Interrupted(media, {"-wait"}, {"--end-installer"}, static_cast<DWORD>(GetParam()));
    EXPECT_THAT(run.exitCode, testing::AnyOf(130u, 1u, InterruptedBeforeItBegan()));
    EXPECT_EQ(Running(), 0u);
}

INSTANTIATE_TEST_SUITE_P(AfterMilliseconds, CtrlC,
                         testing::Values(0, 100, 200, 400, 800, 1200, 1600, 2000, 3000),
                         testing::PrintToStringParamName());

TEST_F(End, OfTwoRunsAtATimeIsEachItsOwn) {
    const NamedEvent event;
    const Media media = ActingMedia("print one of two|wait " + event.Name() + "|exit 21");
    const MediatoolProcess first = Started(media, {"-wait"}, {"--json"});
    const MediatoolProcess second = Started(media, {"-wait"}, {"--json"});
    ASSERT_TRUE(WaitForProcesses(4));
    event.Set();
    for (const MediatoolProcess* const process : {&first, &second}) {
        const MediatoolRun run = process->Finish();
        EXPECT_EQ(run.exitCode, 21u);
        EXPECT_EQ(Json::parse(run.output)["boxes"].size(), 0u);
    }
}

}  // namespace
}  // namespace launcher::test
