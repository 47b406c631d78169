// A launcher's family of processes, with programs that start each other.

#include "mediatool/run/family.h"

// windows.h first: this header needs it.
#include <tlhelp32.h>

#include <functional>
#include <optional>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/owners.h"
#include "mediatool/run/processes.h"
#include "mediatool/run/start.h"
#include "tests/mediatool/run/support/watched_process.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/wine.h"

namespace launcher::mediatool {
namespace {

namespace stdfs = std::filesystem;
using test::NamedEvent;

class FamilyTest : public test::IsolatedTest {
  protected:
    FamilyTest() {
        stdfs::copy_file(test::BuiltFile(ACTING_INSTALLER), folder_.Dir() / "acting.exe");
    }
    ~FamilyTest() override {
        event_.Set();
        EXPECT_TRUE(test::NoneRunsBelow(folder_.Dir()));
    }

    // Does these things, with the name of the event for "EVENT".
    Family Start(std::string acts, bool bound) {
        while (acts.find("EVENT") != std::string::npos)
            acts.replace(acts.find("EVENT"), 5, event_.Name());
        SetEnvVar("STANDIN_ACTS", acts);
        const std::string program = folder_.Text("acting.exe");
        SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
        const auto open = [&](const wchar_t* name) {
            return FileHandle(CreateFileW((folder_.Dir() / name).c_str(), GENERIC_WRITE,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                                          CREATE_ALWAYS, 0, nullptr));
        };
        const FileHandle output = open(L"output");
        const FileHandle errors = open(L"errors");
        for (;;)
            try {
                return StartFamily(program, "acting", output.Get(), errors.Get(), bound);
            } catch (const NotStarted& failure) {
                if (std::string(failure.what()).find("(error 1359)") == std::string::npos) throw;
            }
    }

    static DWORD ExitCodeOf(const Family& family) {
        DWORD code = 0;
        GetExitCodeProcess(family.Launcher(), &code);
        return code;
    }

    static void WaitForFile(const stdfs::path& file) {
        for (int i = 0; i < 500 && !stdfs::exists(file); ++i)
            Sleep(20);
        ASSERT_TRUE(stdfs::exists(file));
    }

    void WaitForProcesses(std::size_t count) const {
        std::size_t running = 0;
        for (int i = 0; i < 500 && running != count; ++i) {
            Sleep(20);
            running = test::RunningBelow(folder_.Dir()).size();
        }
        ASSERT_EQ(running, count);
    }

    test::TemporaryFolder folder_;
    NamedEvent event_;
};

// A clock that only goes on when the program rests: by the time that it asks for, or by this.
class RestingClock {
  public:
    explicit RestingClock(std::optional<DWORD> step = std::nullopt) : step_(step) {}

    std::vector<DWORD> rests;

  private:
    std::optional<DWORD> step_;
    ULONGLONG now_ = 1'000'000;
    const test::Hook<decltype(&GetTickCount64)> clock_{"GetTickCount64",
                                                       [this](auto) { return now_; }};
    const test::Hook<decltype(&Sleep)> sleep_{"Sleep", [this](auto real, DWORD time) {
                                                  rests.push_back(time);
                                                  now_ += step_.value_or(time);
                                                  if (!step_) real(time);
                                              }};
};

// On Windows 7 an installer that wants a job of its own cannot be in another.
TEST_F(FamilyTest, KnowsTheInstallerOnceItIsThere) {
    const test::Hook<decltype(&AssignProcessToJobObject)> job("AssignProcessToJobObject",
                                                              [](auto real, auto... given) {
                                                                  ADD_FAILURE() << "bound together";
                                                                  return real(given...);
                                                              });
    Family family = Start("child wait EVENT|wait EVENT", false);
    WaitForProcesses(2);
    EXPECT_TRUE(family.LookForInstaller());
    ASSERT_TRUE(family.Installer());
    EXPECT_NE(family.Installer()->processId, family.LauncherId());
    EXPECT_TRUE(family.Installer()->stillRunning);
    {
        const test::Hook<decltype(&CreateToolhelp32Snapshot)> again(
            "CreateToolhelp32Snapshot", [](auto real, auto... given) {
                ADD_FAILURE() << "looked for again";
                return real(given...);
            });
        EXPECT_TRUE(family.LookForInstaller());
    }
    event_.Set();
    EXPECT_TRUE(test::NoneRunsBelow(folder_.Dir()));
    EXPECT_FALSE(family.Installer()->stillRunning);
    EXPECT_FALSE(family.Installer()->wasEnded);
}

TEST_F(FamilyTest, KnowsAnInstallerThatItMayNotEnd) {
    const test::Hook<decltype(&OpenProcess)> rights(
        "OpenProcess", [](auto real, DWORD access, BOOL inherit, DWORD id) -> HANDLE {
            if ((access & PROCESS_TERMINATE) == 0) return real(access, inherit, id);
            SetLastError(ERROR_ACCESS_DENIED);
            return nullptr;
        });
    Family family = Start("child wait EVENT|wait EVENT", false);
    WaitForProcesses(2);
    EXPECT_TRUE(family.LookForInstaller());
    EXPECT_TRUE(family.Installer()->stillRunning);
}

// The number of its parent, which has ended, is the launcher's now.
TEST_F(FamilyTest, TakesNoOlderProcessForTheInstaller) {
    Family family = Start("wait EVENT", false);
    const test::Hook<decltype(&Process32NextW)> list(
        "Process32NextW", [&family](auto real, HANDLE snapshot, PROCESSENTRY32W* entry) {
            const BOOL found = real(snapshot, entry);
            if (entry->th32ProcessID == GetCurrentProcessId())
                entry->th32ParentProcessID = family.LauncherId();
            return found;
        });
    EXPECT_FALSE(family.LookForInstaller());
    EXPECT_TRUE(CanBeChildOf(family.Launcher(), GetCurrentProcess()));
    EXPECT_TRUE(CanBeChildOf(family.Launcher(), family.Launcher())) << "started at the same time";
    EXPECT_FALSE(CanBeChildOf(GetCurrentProcess(), family.Launcher()));
}

TEST_F(FamilyTest, HasNoInstallerWithoutChildren) {
    Family family = Start("wait EVENT", false);
    WaitForProcesses(1);
    EXPECT_FALSE(family.LookForInstaller());
    EXPECT_FALSE(family.Installer());
}

TEST_F(FamilyTest, EndOfTheLauncherLeavesTheInstaller) {
    // Once it is on its way: Wine leaves a process hanging whose parent ends while it creates it.
    const stdfs::path note = folder_.Dir() / "note";
    Family family = Start("child note " + test::ToUtf8(note) + ",wait EVENT|wait EVENT", false);
    WaitForFile(note);
    family.LookForInstaller();
    std::vector<DWORD> waits;
    {
        const test::Hook<decltype(&WaitForSingleObject)> wait(
            "WaitForSingleObject", [&waits](auto real, HANDLE object, DWORD time) {
                if (time > 0) waits.push_back(time);
                return real(object, time);
            });
        family.EndLauncher(124);
    }
    EXPECT_EQ(waits, std::vector<DWORD>{10'000});
    WaitForProcesses(1);
    EXPECT_EQ(ExitCodeOf(family), 124u);
    EXPECT_TRUE(family.SeenLauncher().wasEnded);
    EXPECT_TRUE(family.Installer()->stillRunning);
    EXPECT_FALSE(family.Installer()->wasEnded);
}

TEST_F(FamilyTest, ThatHasEndedWasNotEnded) {
    Family family = Start("exit 7", false);
    EXPECT_EQ(WaitForSingleObject(family.Launcher(), 60000), WAIT_OBJECT_0);
    family.EndLauncher(124);
    family.EndAll(124);
    EXPECT_FALSE(family.SeenLauncher().wasEnded);
    EXPECT_EQ(ExitCodeOf(family), 7u);
}

// With a job, and without one, as where there are no nested ones.
class WholeFamily : public FamilyTest, public testing::WithParamInterface<bool> {};

TEST_P(WholeFamily, EndsTogether) {
    const bool hasJobs = GetParam();
    const test::Hook<decltype(&AssignProcessToJobObject)> hook(
        "AssignProcessToJobObject", [hasJobs](auto real, HANDLE job, HANDLE process) {
            SetLastError(ERROR_ACCESS_DENIED);
            return hasJobs ? real(job, process) : FALSE;
        });
    Family family = Start("child child wait EVENT,wait EVENT|wait EVENT", true);
    WaitForProcesses(3);
    {
        // By the job alone, where there is one: they are gone before anybody looks again.
        const test::Hook<decltype(&TerminateJobObject)> end(
            "TerminateJobObject", [&](auto real, auto... given) {
                EXPECT_TRUE(hasJobs);
                const BOOL ended = real(given...);
                EXPECT_TRUE(test::NoneRunsBelow(folder_.Dir()));
                return ended;
            });
        family.EndAll(124);
    }
    EXPECT_TRUE(test::RunningBelow(folder_.Dir()).empty());
    EXPECT_EQ(ExitCodeOf(family), 124u);
    EXPECT_TRUE(family.SeenLauncher().wasEnded);
    ASSERT_TRUE(family.Installer());
    EXPECT_TRUE(family.Installer()->wasEnded);
}

INSTANTIATE_TEST_SUITE_P(Jobs, WholeFamily, testing::Bool(), [](const auto& row) {
    return std::string(row.param ? "Nested" : "NotNested");
});

// Where they are refused, an installer that asks to be let out would fail.
TEST_F(FamilyTest, BoundOneLetsGoWhoWantsOut) {
    DWORD limits = 0;
    const test::Hook<decltype(&SetInformationJobObject)> job(
        "SetInformationJobObject",
        [&limits](auto real, HANDLE of, auto kind, void* information, DWORD size) {
            limits = static_cast<JOBOBJECT_EXTENDED_LIMIT_INFORMATION*>(information)
                         ->BasicLimitInformation.LimitFlags;
            return real(of, kind, information, size);
        });
    Start("exit 0", true);
    EXPECT_EQ(limits, DWORD{JOB_OBJECT_LIMIT_BREAKAWAY_OK});
}

// The installer has ended, and what it started goes on: only a job still knows it.
TEST_F(FamilyTest, BoundOneEndsWithOrphansToo) {
    const stdfs::path note = folder_.Dir() / "note";
    const NamedEvent bound;
    Family family = Start("wait " + bound.Name() + "|child child note " + test::ToUtf8(note) +
                              ",wait EVENT|wait EVENT",
                          true);
    bound.Set();
    WaitForFile(note);
    WaitForProcesses(2);
    family.EndAll(124);
    EXPECT_TRUE(test::RunningBelow(folder_.Dir()).empty());
}

// What the system tells of a job: so many processes are running in it, as often as it is asked.
auto JobOf(const std::function<DWORD()>& running) {
    return test::Hook<decltype(&QueryInformationJobObject)>(
        "QueryInformationJobObject",
        [running](auto real, HANDLE of, auto kind, void* information, auto... rest) {
            const BOOL told = real(of, kind, information, rest...);
            static_cast<JOBOBJECT_BASIC_ACCOUNTING_INFORMATION*>(information)->ActiveProcesses =
                running();
            return told;
        });
}

// Windows takes its time to end a process.
TEST_F(FamilyTest, IsWaitedForToTheEndOfTheLast) {
    Family family = Start("wait EVENT", true);
    int looks = 0;
    {
        const auto job = JobOf([&looks] { return ++looks <= 3 ? 1 : 0; });
        const RestingClock clock;
        family.EndAll(124);
        EXPECT_GE(clock.rests.size(), 3u);
        EXPECT_LT(clock.rests.size(), 1000u);
    }
    EXPECT_GE(looks, 4);
    EXPECT_TRUE(test::RunningBelow(folder_.Dir()).empty());
}

// Of the job that mediatool itself may be in, Windows tells as well.
TEST_F(FamilyTest, IsNotWaitedForAfterItsEndWithoutAJob) {
    Family family = Start("wait EVENT", false);
    const auto job = JobOf([] { return 1; });
    const RestingClock clock;
    family.EndAll(124);
    EXPECT_LT(clock.rests.size(), 1000u);
    EXPECT_TRUE(test::RunningBelow(folder_.Dir()).empty());
}

TEST_F(FamilyTest, IsGivenUpAfterTenSeconds) {
    Family family = Start("wait EVENT", false);
    const test::Hook<decltype(&TerminateProcess)> end(
        "TerminateProcess", test::FailsWith<BOOL>(ERROR_ACCESS_DENIED, FALSE));
    const RestingClock clock(1);
    family.EndAll(124);
    EXPECT_EQ(clock.rests, std::vector<DWORD>(10'000, 10));
    EXPECT_TRUE(family.SeenLauncher().stillRunning);
    EXPECT_FALSE(family.SeenLauncher().wasEnded);
}

// Each time that the system is asked there is one more, and a second has passed.
TEST_F(FamilyTest, IsGivenUpWhenItGrowsForTenSeconds) {
    constexpr DWORD kFirstId = 0x7FFF0000;
    Family family = Start("wait EVENT", false);
    DWORD children = 0;
    bool isTold = false;
    const test::Hook<decltype(&Process32NextW)> list(
        "Process32NextW", [&](auto real, HANDLE snapshot, PROCESSENTRY32W* entry) -> BOOL {
            if (real(snapshot, entry)) return TRUE;
            isTold = !isTold && children < 100;
            if (!isTold) return FALSE;
            entry->th32ProcessID = kFirstId + children++;
            entry->th32ParentProcessID = family.LauncherId();
            entry->szExeFile[0] = L'\0';
            return TRUE;
        });
    const test::Hook<decltype(&OpenProcess)> open(
        "OpenProcess", [&](auto real, DWORD access, BOOL inherit, DWORD id) {
            return real(access, inherit, id >= kFirstId ? family.LauncherId() : id);
        });
    ULONGLONG now = 1'000'000;
    const test::Hook<decltype(&GetTickCount64)> clock("GetTickCount64",
                                                      [&now](auto) { return now += 1000; });
    family.EndAll(124);
    EXPECT_EQ(children, 11u);
    EXPECT_EQ(WaitForSingleObject(family.Launcher(), 60000), WAIT_OBJECT_0);
    EXPECT_TRUE(family.SeenLauncher().wasEnded);
}

TEST_F(FamilyTest, StartsNothingThatIsNoProgram) {
    folder_.Write("acting.exe", "text");
    try {
        Start("", false);
        ADD_FAILURE();
    } catch (const NotStarted& failure) {
        EXPECT_EQ(failure.ExitCode(), 126);
        EXPECT_TRUE(std::string(failure.what()).ends_with(" (error 193).")) << failure.what();
    }
}

}  // namespace
}  // namespace launcher::mediatool
