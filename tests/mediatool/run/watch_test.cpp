// The watching itself, in this process, with a program that acts in the launcher's place.

// windows.h first: this header needs it.
#include <windows.h>

#include <tlhelp32.h>

#include <algorithm>
#include <functional>
#include <set>
#include <stdexcept>
#include <utility>

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
        EXPECT_FALSE(lines.empty());
        for (const SeenLine& line : lines)
            seen.push_back(line.text);
        if (sees) sees();
    }
    void Saw(const AnsweredBox&) override {}
    void TimePassed(std::uint64_t milliseconds) override {
        passed = milliseconds;
        if (told) told();
    }
    bool TakesMore() override { return !takes || takes(); }

    std::vector<std::string> seen;
    std::function<void()> sees;
    std::function<bool()> takes;
    std::function<void()> told;  // the time
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
    void WaitUntilSaid() const {
        for (int i = 0; i < 500 && !stdfs::exists(folder_.Dir() / "said"); ++i)
            Sleep(20);
    }
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

// Its own exit code is not that of a run of which a part is missing.
TEST_F(WatchTest, ThatFailsAfterTheEndOfTheLauncherIsAFailureToo) {
    bool isOver = false;
    witness_.takes = [&isOver] { return isOver; };
    witness_.sees = [] { throw std::runtime_error("no more memory"); };
    const test::Hook<decltype(&GetExitCodeProcess)> code("GetExitCodeProcess",
                                                         [&isOver](auto real, auto... given) {
                                                             isOver = true;
                                                             return real(given...);
                                                         });
    const WatchedRun run = Run("print one|exit 7");
    EXPECT_EQ(run.exitCode, 125u);
    EXPECT_EQ(run.endedBy, EndedBy::Failure);
    EXPECT_EQ(run.failure, "no more memory");
    ASSERT_TRUE(run.launcher);
    EXPECT_FALSE(run.launcher->wasEnded);
}

TEST_F(WatchTest, ThatFailsWhenItEndsTheFamilyEndsTheLauncher) {
    request_.timeLimit = 0;
    request_.endInstaller = true;
    bool isAtEnd = false;
    witness_.told = [&isAtEnd] { isAtEnd = true; };
    WatchedRun run;
    {
        const test::Hook<decltype(&CreateToolhelp32Snapshot)> list(
            "CreateToolhelp32Snapshot", [&isAtEnd](auto real, auto... given) {
                if (isAtEnd) throw std::runtime_error("no list");
                return real(given...);
            });
        run = Run("wait " + event_.Name());
    }
    EXPECT_EQ(run.exitCode, 125u);
    EXPECT_EQ(run.failure, "no list");
    ASSERT_TRUE(run.launcher);
    EXPECT_TRUE(run.launcher->wasEnded);
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
    // The first fills what the others would leave of the room.
    const WatchedRun run =
        Run("print " + std::string(kKeptLines % 198 - 100, 'x') + "|lines 200000");
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.lines.size(), kKeptLines / 198 + 1);
    EXPECT_EQ(run.lines.size() + run.linesLeftOut, 200'001u);
    EXPECT_EQ(witness_.seen.size(), 200'001u);
    EXPECT_THAT(witness_.seen.back(), HasSubstr("line 199999 ."));
}

TEST_F(WatchTest, LeavesLinesWhereTheyAreUntilThereIsRoom) {
    int ticksWithLines = 0;
    witness_.takes = [&] { return EndWhenSaid() && ++ticksWithLines > 10; };
    witness_.sees = [&] { EXPECT_GT(ticksWithLines, 10); };
    const WatchedRun run = Run("lines 100|" + Said() + "|wait " + event_.Name());
    EXPECT_EQ(run.lines.size(), 100u);
    EXPECT_EQ(run.milliseconds, witness_.passed);
}

// More than is taken at once is taken without a rest, and then there is one.
TEST_F(WatchTest, RestsOnlyWhileThereIsNothingToTake) {
    witness_.takes = [this] { return stdfs::exists(folder_.Dir() / "said"); };
    std::vector<DWORD> rests;
    witness_.told = [&] {
        const bool isDone = witness_.seen.size() == 60'000 && rests.back() > 0;
        if (isDone || rests.size() > 3000) event_.Set();
    };
    const test::Hook<decltype(&WaitForMultipleObjects)> wait(
        "WaitForMultipleObjects",
        [&rests](auto real, DWORD count, auto handles, BOOL all, DWORD time) {
            rests.push_back(time);
            return real(count, handles, all, time);
        });
    const WatchedRun run = Run("lines 60000|" + Said() + "|wait " + event_.Name());
    EXPECT_EQ(run.lines.size(), 60'000u);
    EXPECT_EQ(std::set<DWORD>(rests.begin(), rests.end()), (std::set<DWORD>{0, 50}));
}

// Twelve megabytes, two at most at a time, with six seconds for each time.
TEST_F(WatchTest, WaitsForWhoTakesLinesSlowly) {
    ULONGLONG taking = 0;
    witness_.takes = [this] { return EndWhenSaid(); };
    witness_.sees = [&taking] { taking += 6000; };
    WatchedRun run;
    {
        const test::Hook<decltype(&GetTickCount64)> clock(
            "GetTickCount64", [&taking](auto real) { return real() + taking; });
        run = Run("lines 120000|" + Said() + "|wait " + event_.Name());
    }
    EXPECT_EQ(run.exitCode, 124u);
    EXPECT_EQ(run.bytesLeftOut, 0u);
    EXPECT_EQ(run.lines.size(), 120'000u);
}

TEST_F(WatchTest, GoesOnWithoutRoomForLines) {
    witness_.takes = [this] { return EndWhenSaid() && false; };
    const WatchedRun run = Run("lines 100|complain of this|" + Said() + "|wait " + event_.Name());
    EXPECT_EQ(run.exitCode, 124u);
    EXPECT_EQ(run.bytesLeftOut, 10'009u);
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
    const WatchedRun run = Run("print whole|piece half|mutter quarter|note " + note + "|wait " +
                               event_.Name() + "|lines 10");
    EXPECT_EQ(witness_.seen, std::vector<std::string>{"whole"});
    EXPECT_EQ(run.bytesLeftOut, 1011u);
}

// The installer may have locked a part of the file. Time passes here when the watching sleeps: what
// goes on without a rest would find its file unlocked after a while.
TEST_F(WatchTest, RestsWhileLinesCannotBeRead) {
    int looks = 0;
    int reads = 0;
    ULONGLONG slept = 0;
    std::set<DWORD> rests;
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
            "GetTickCount64", [&slept](auto) { return 1'000'000 + slept; });
        const test::Hook<decltype(&Sleep)> sleep("Sleep", [&](auto, DWORD time) {
            rests.insert(time);
            slept = slept < 9999 ? std::min<ULONGLONG>(slept + time, 9999) : slept + 1;
        });
        run = Run(acts);
    }
    EXPECT_EQ(slept, 10'000u);
    EXPECT_THAT(rests, testing::ElementsAre(50u));
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

TEST_F(WatchTest, TakesTheHalfLineOfAnInstallerThatHasEnded) {
    const test::NamedEvent launcher;
    int ticks = 0;
    witness_.takes = [&] {
        if (stdfs::exists(folder_.Dir() / "said") && ++ticks > 5) event_.Set();
        if (ticks > 5 && test::RunningBelow(folder_.Dir()).size() == 1) launcher.Set();
        return true;
    };
    const WatchedRun run = Run("child print whole,piece half," + Said() + ",wait " + event_.Name() +
                               "|wait " + launcher.Name());
    EXPECT_EQ(witness_.seen, (std::vector<std::string>{"whole", "half"}));
    ASSERT_TRUE(run.installer);
    EXPECT_FALSE(run.installer->stillRunning);
}

// As the list of the processes is asked for, the launcher writes one more line.
TEST_F(WatchTest, TakesWhatWasWrittenBeforeTheInstallerWasSeenForTheLaunchers) {
    const test::NamedEvent launcher;
    bool isFirst = true;
    witness_.told = [this] { event_.Set(); };
    WatchedRun run;
    {
        const test::Hook<decltype(&CreateToolhelp32Snapshot)> list(
            "CreateToolhelp32Snapshot", [&](auto real, auto... given) {
                if (!std::exchange(isFirst, false)) return real(given...);
                for (int i = 0; i < 500 && test::RunningBelow(folder_.Dir()).size() < 2; ++i)
                    Sleep(20);
                launcher.Set();
                WaitUntilSaid();
                return real(given...);
            });
        run = Run("child wait " + event_.Name() + "|wait " + launcher.Name() +
                  "|print  INFO: the launcher's|" + Said() + "|wait " + event_.Name());
    }
    ASSERT_EQ(run.lines.size(), 1u);
    EXPECT_EQ(run.lines[0].origin, Origin::LauncherOutput);
}

TEST_F(WatchTest, KnowsTheInstallerThatWasStartedJustBeforeTheEnd) {
    const test::NamedEvent launcher;
    request_.timeLimit = 0;
    WatchedRun run;
    {
        const test::Hook<decltype(&TerminateProcess)> end(
            "TerminateProcess", [&](auto real, HANDLE process, UINT exitCode) {
                launcher.Set();
                WaitUntilSaid();
                return real(process, exitCode);
            });
        run = Run("wait " + launcher.Name() + "|child " + Said() + ",wait " + event_.Name() +
                  "|wait " + event_.Name());
    }
    EXPECT_EQ(run.exitCode, 124u);
    ASSERT_TRUE(run.installer);
    EXPECT_TRUE(run.installer->stillRunning);
}

// As it is created: without a console, and not suspended, as nobody would let it go on if mediatool
// were killed before it did; with an input that is at its end; on a desktop that Wine does not
// start for it.
TEST_F(WatchTest, StartsTheLauncherAsItGoesOn) {
    DWORD flags = 0;
    bool hasDesktop = false;
    bool hadDesktop = false;
    BOOL isRead = FALSE;
    DWORD count = 1;
    DWORD inputFlags = 0;
    request_.endInstaller = true;
    {
        const test::Hook<decltype(&GetDesktopWindow)> desktop("GetDesktopWindow",
                                                              [&hasDesktop](auto real) {
                                                                  hasDesktop = true;
                                                                  return real();
                                                              });
        const test::Hook<decltype(&CreateProcessW)> hook(
            "CreateProcessW",
            [&](auto real, auto program, auto line, auto process, auto thread, auto inherits,
                DWORD asked, auto environment, auto folder, STARTUPINFOW* startup, auto created) {
                flags = asked;
                hadDesktop = hasDesktop;
                char byte = 0;
                isRead = ::ReadFile(startup->hStdInput, &byte, 1, &count, nullptr);
                GetHandleInformation(startup->hStdInput, &inputFlags);
                return real(program, line, process, thread, inherits, asked, environment, folder,
                            startup, created);
            });
        Run("exit 0");
    }
    EXPECT_EQ(flags, DWORD{EXTENDED_STARTUPINFO_PRESENT | DETACHED_PROCESS});
    EXPECT_TRUE(hadDesktop);
    EXPECT_TRUE(isRead);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(inputFlags, DWORD{HANDLE_FLAG_INHERIT});
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

// What is said when a look at the launcher fails so.
NotStarted NotFoundBecause(DWORD error) {
    const test::Hook<decltype(&GetFileAttributesExW)> hook("GetFileAttributesExW",
                                                           test::FailsWith<BOOL>(error, FALSE));
    try {
        CheckProgram("C:\\setup.exe");
    } catch (const NotStarted& failure) {
        return failure;
    }
    throw std::logic_error("it was found");
}

class NoProgram : public test::IsolatedTest, public testing::WithParamInterface<DWORD> {};

TEST_P(NoProgram, IsToldAsNone) {
    const NotStarted failure = NotFoundBecause(GetParam());
    EXPECT_EQ(failure.ExitCode(), 127);
    EXPECT_STREQ(failure.what(), "There is no launcher \"C:\\setup.exe\".");
}

INSTANTIATE_TEST_SUITE_P(Errors, NoProgram,
                         testing::Values(ERROR_FILE_NOT_FOUND, ERROR_PATH_NOT_FOUND));

class ProgramCheck : public test::IsolatedTest, public testing::WithParamInterface<DWORD> {};

// It may be there all the same.
TEST_P(ProgramCheck, TellsWhatCannotBeLookedAtFromNone) {
    const NotStarted failure = NotFoundBecause(GetParam());
    EXPECT_EQ(failure.ExitCode(), 126);
    EXPECT_THAT(failure.what(), HasSubstr("Windows cannot start \"C:\\setup.exe\": "));
}

INSTANTIATE_TEST_SUITE_P(Errors, ProgramCheck,
                         testing::Values(ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION));

}  // namespace
}  // namespace launcher::mediatool
