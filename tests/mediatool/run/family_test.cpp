// A launcher's family of processes, with programs that start each other.

#include "mediatool/run/family.h"

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

TEST_F(FamilyTest, KnowsTheInstallerOnceItIsThere) {
    Family family = Start("child wait EVENT|wait EVENT", false);
    WaitForProcesses(2);
    EXPECT_TRUE(family.LookForInstaller());
    ASSERT_TRUE(family.Installer());
    EXPECT_NE(family.Installer()->processId, family.LauncherId());
    EXPECT_TRUE(family.Installer()->stillRunning);
    event_.Set();
    EXPECT_TRUE(test::NoneRunsBelow(folder_.Dir()));
    EXPECT_FALSE(family.Installer()->stillRunning);
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
    family.EndLauncher(124);
    WaitForProcesses(1);
    DWORD code = 0;
    GetExitCodeProcess(family.Launcher(), &code);
    EXPECT_EQ(code, 124u);
    EXPECT_TRUE(family.Installer()->stillRunning);
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
    family.EndAll(124);
    EXPECT_TRUE(test::RunningBelow(folder_.Dir()).empty());
}

INSTANTIATE_TEST_SUITE_P(Jobs, WholeFamily, testing::Bool(), [](const auto& row) {
    return std::string(row.param ? "Nested" : "NotNested");
});

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

// Windows takes its time to end a process.
TEST_F(FamilyTest, IsWaitedForToTheEndOfTheLast) {
    Family family = Start("wait EVENT", true);
    int looks = 0;
    int rests = 0;
    {
        const test::Hook<decltype(&QueryInformationJobObject)> job(
            "QueryInformationJobObject",
            [&looks](auto real, HANDLE of, auto kind, void* information, auto... rest) {
                const BOOL told = real(of, kind, information, rest...);
                static_cast<JOBOBJECT_BASIC_ACCOUNTING_INFORMATION*>(information)->ActiveProcesses =
                    ++looks <= 3 ? 1 : 0;
                return told;
            });
        const test::Hook<decltype(&Sleep)> sleep("Sleep", [&rests](auto real, DWORD time) {
            ++rests;
            real(time);
        });
        family.EndAll(124);
    }
    EXPECT_GE(looks, 4);
    EXPECT_GE(rests, 3);
    EXPECT_TRUE(test::RunningBelow(folder_.Dir()).empty());
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
