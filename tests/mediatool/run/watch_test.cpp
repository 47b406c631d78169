// The watching itself, in this process, with a program that acts in the launcher's place.

#include <algorithm>
#include <functional>

#include "fs/environment.h"
#include "mediatool/base/interruption.h"
#include "mediatool/run/report.h"
#include "mediatool/run/run.h"
#include "mediatool/run/start.h"
#include "tests/mediatool/run/support/watched_process.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/wine.h"

namespace launcher::mediatool {
namespace {

namespace stdfs = std::filesystem;
using testing::HasSubstr;

struct TestWitness : Witness {
    void Started(const RunRequest&) override {}
    void Saw(const std::vector<SeenLine>& lines) override {
        for (const SeenLine& line : lines)
            seen.push_back(line.text);
        if (sees) sees();
    }
    void Saw(const AnsweredBox&) override {}
    void TimePassed(std::uint64_t milliseconds) override { passed = milliseconds; }
    bool TakesMore() override { return !takes || takes(); }

    std::vector<std::string> seen;
    std::function<void()> sees;
    std::function<bool()> takes;
    std::uint64_t passed = 0;
};

class WatchTest : public test::IsolatedTest {
  protected:
    WatchTest() {
        stdfs::copy_file(test::BuiltFile(ACTING_INSTALLER), folder_.Dir() / "acting.exe");
        request_.launcher = folder_.Text("acting.exe");
        request_.arguments = {"-wait"};
    }
    ~WatchTest() override {
        event_.Set();
        EXPECT_TRUE(test::NoneRunsBelow(folder_.Dir()));
    }

    WatchedRun Run(const std::string& acts) {
        SetEnvVar("STANDIN_ACTS", acts);
        const Interruption interruption;
        for (;;)
            try {
                return RunWatched(request_, interruption, witness_);
            } catch (const NotStarted& failure) {
                if (std::string(failure.what()).find("(error 1359)") == std::string::npos) throw;
            }
    }

    // An act, by which the program tells that it has written what comes before.
    std::string Said() const { return "note " + folder_.Text("said"); }
    // From then on the time limit is over. A fixed one would run out before a slow machine's
    // program has said anything.
    bool EndWhenSaid() {
        if (stdfs::exists(folder_.Dir() / "said")) request_.timeLimit = 0;
        return request_.timeLimit.has_value();
    }

    test::TemporaryFolder folder_;
    test::NamedEvent event_;
    RunRequest request_;
    TestWitness witness_;
};

TEST_F(WatchTest, ThatFailsEndsTheLauncher) {
    witness_.sees = [] { throw std::runtime_error("no more memory"); };
    const WatchedRun run = Run("print one|wait " + event_.Name());
    EXPECT_EQ(run.exitCode, 125u);
    EXPECT_EQ(run.endedBy, EndedBy::Failure);
    EXPECT_EQ(run.failure, "no more memory");
    ASSERT_TRUE(run.launcher);
    EXPECT_FALSE(run.launcher->stillRunning);
    EXPECT_TRUE(run.launcher->wasEnded);
    EXPECT_EQ(MeaningOf(run, request_),
              "mediatool failed (no more memory): the launcher was ended; no installer was seen.");
    EXPECT_TRUE(test::RunningBelow(folder_.Dir()).empty());
}

TEST_F(WatchTest, ThatFailsEndsTheWholeFamilyIfAsked) {
    witness_.sees = [] { throw std::runtime_error("no more memory"); };
    request_.endInstaller = true;
    const std::string wait = "wait " + event_.Name();
    const WatchedRun run = Run("child " + wait + "|print one|" + wait);
    EXPECT_EQ(run.endedBy, EndedBy::Failure);
    ASSERT_TRUE(run.installer);
    EXPECT_TRUE(run.installer->wasEnded);
}

TEST_F(WatchTest, OfALauncherThatCannotBeEndedSaysSo) {
    request_.timeLimit = 1000;
    WatchedRun run;
    {
        const test::Hook<decltype(&TerminateProcess)> hook(
            "TerminateProcess", test::FailsWith<BOOL>(ERROR_ACCESS_DENIED, FALSE));
        run = Run("wait " + event_.Name());
    }
    EXPECT_EQ(run.exitCode, 124u);
    ASSERT_TRUE(run.launcher);
    EXPECT_TRUE(run.launcher->stillRunning);
    EXPECT_EQ(MeaningOf(run, request_), "The time limit is over: the launcher, process " +
                                            std::to_string(run.launcher->processId) +
                                            ", cannot be ended; no installer was seen.");
}

TEST_F(WatchTest, KeepsTheFirstLinesAndCountsTheOthers) {
    const WatchedRun run = Run("lines 200000");
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.lines.size(), kKeptLines / 198);
    EXPECT_EQ(run.lines.size() + run.linesLeftOut, 200'000u);
    EXPECT_EQ(witness_.seen.size(), 200'000u);
    EXPECT_THAT(witness_.seen.back(), HasSubstr("line 199999 ."));
}

TEST_F(WatchTest, LeavesLinesWhereTheyAreUntilThereIsRoom) {
    int ticksWithLines = 0;
    witness_.takes = [&] { return EndWhenSaid() && ++ticksWithLines > 10; };
    witness_.sees = [&] { EXPECT_GT(ticksWithLines, 10); };
    const WatchedRun run = Run("lines 100|" + Said() + "|wait " + event_.Name());
    EXPECT_EQ(run.lines.size(), 100u);
}

TEST_F(WatchTest, GoesOnWithoutRoomForLines) {
    witness_.takes = [this] { return EndWhenSaid() && false; };
    const WatchedRun run = Run("lines 100|" + Said() + "|wait " + event_.Name());
    EXPECT_EQ(run.exitCode, 124u);
    EXPECT_EQ(run.bytesLeftOut, 10'000u);
}

// The part of a line that was taken is in no line either.
TEST_F(WatchTest, CountsAllThatIsInNoLine) {
    const std::string note = folder_.Text("note");
    int ticks = 0;
    witness_.takes = [&] {
        if (!stdfs::exists(note) || ++ticks < 5) return true;
        event_.Set();
        return false;
    };
    const WatchedRun run =
        Run("print whole|piece half|note " + note + "|wait " + event_.Name() + "|lines 10");
    EXPECT_EQ(witness_.seen, std::vector<std::string>{"whole"});
    EXPECT_EQ(run.bytesLeftOut, 1004u);
}

// The installer may have locked a part of the file. Time passes here when the watching sleeps: what
// goes on without a rest would find its file unlocked after a while.
TEST_F(WatchTest, RestsWhileLinesCannotBeRead) {
    int looks = 0;
    int reads = 0;
    ULONGLONG slept = 0;
    std::vector<DWORD> waits;
    witness_.takes = [&] {
        if (stdfs::exists(folder_.Dir() / "said") && ++looks > 5) request_.timeLimit = 0;
        return true;
    };
    const std::string acts = "lines 100|" + Said() + "|wait " + event_.Name();
    WatchedRun run;
    {
        const test::Hook<decltype(&::ReadFile)> locked("ReadFile", [&](auto real, auto... given) {
            if (++reads > 100'000) return real(given...);
            SetLastError(ERROR_LOCK_VIOLATION);
            return FALSE;
        });
        const test::Hook<decltype(&WaitForMultipleObjects)> wait(
            "WaitForMultipleObjects",
            [&](auto real, DWORD count, auto handles, BOOL all, DWORD time) {
                waits.push_back(time);
                return real(count, handles, all, time);
            });
        const test::Hook<decltype(&GetTickCount64)> clock(
            "GetTickCount64", [&](auto real) { return real() + slept; });
        const test::Hook<decltype(&Sleep)> sleep("Sleep", [&](auto, DWORD time) { slept += time; });
        run = Run(acts);
    }
    EXPECT_THAT(waits, testing::Each(testing::Gt(0u)));
    EXPECT_EQ(run.exitCode, 124u);
    EXPECT_EQ(run.bytesLeftOut, 10'000u);
}

// Which ends it later, and maybe itself, while its lines are still being taken.
TEST_F(WatchTest, TakesNoHalfLineOfAnInstallerThatGoesOn) {
    witness_.takes = [this] {
        EndWhenSaid();
        // From here on the launcher has ended, and the installer has not.
        if (!request_.timeLimit || test::RunningBelow(folder_.Dir()).size() > 1) return false;
        event_.Set();
        return test::NoneRunsBelow(folder_.Dir());
    };
    const WatchedRun run = Run("child print whole,piece half," + Said() + ",wait " + event_.Name() +
                               "|wait " + event_.Name());
    EXPECT_EQ(run.exitCode, 124u);
    EXPECT_EQ(witness_.seen, std::vector<std::string>{"whole"});
    ASSERT_TRUE(run.installer);
    EXPECT_TRUE(run.installer->stillRunning);
    EXPECT_THAT(MeaningOf(run, request_), testing::EndsWith(" goes on."));
}

// Nobody would let it go on if mediatool were killed before it did.
TEST_F(WatchTest, StartsNothingThatIsSuspended) {
    DWORD flags = CREATE_SUSPENDED;
    request_.endInstaller = true;
    {
        const test::Hook<decltype(&CreateProcessW)> hook(
            "CreateProcessW", [&flags](auto real, auto program, auto line, auto process,
                                       auto thread, auto inherits, DWORD asked, auto... rest) {
                flags = asked;
                return real(program, line, process, thread, inherits, asked, rest...);
            });
        Run("exit 0");
    }
    EXPECT_EQ(flags & CREATE_SUSPENDED, 0u);
}

TEST_F(WatchTest, StartsNothingAfterAnInterruption) {
    PHANDLER_ROUTINE pressCtrlC = nullptr;
    const test::Hook<decltype(&SetConsoleCtrlHandler)> console(
        "SetConsoleCtrlHandler", [&pressCtrlC](auto, PHANDLER_ROUTINE handler, BOOL) {
            pressCtrlC = handler;
            return TRUE;
        });
    const Interruption interruption;
    pressCtrlC(CTRL_C_EVENT);
    const WatchedRun run = RunWatched(request_, interruption, witness_);
    EXPECT_EQ(run.exitCode, 130u);
    EXPECT_EQ(run.endedBy, EndedBy::Interrupt);
    EXPECT_FALSE(run.launcher);
}

class ProgramCheck : public test::IsolatedTest, public testing::WithParamInterface<DWORD> {};

// It may be there all the same.
TEST_P(ProgramCheck, TellsWhatCannotBeLookedAtFromNone) {
    const test::Hook<decltype(&GetFileAttributesExW)> hook(
        "GetFileAttributesExW", test::FailsWith<BOOL>(GetParam(), FALSE));
    try {
        CheckProgram("C:\\setup.exe");
        ADD_FAILURE();
    } catch (const NotStarted& failure) {
        EXPECT_EQ(failure.ExitCode(), 126);
        EXPECT_THAT(failure.what(), HasSubstr("Windows cannot start \"C:\\setup.exe\": "));
    }
}

INSTANTIATE_TEST_SUITE_P(Errors, ProgramCheck,
                         testing::Values(ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION));

}  // namespace
}  // namespace launcher::mediatool
