// What is asked of Windows, on fakes of the process functions.

#include <windows.h>

#include <cstring>

#include "fs/encoding.h"
#include "installer/installer_process.h"
#include "installer/launch.h"
#include "tests/installer/fakes.h"
#include "tests/support/fake_messages.h"
#include "tests/support/handle_count.h"
#include "tests/support/hook.h"

namespace launcher {
namespace {

using testing::ElementsAre;

HANDLE FakeHandle(UINT_PTR value) {
    return reinterpret_cast<HANDLE>(value);
}

const HANDLE kProcess = FakeHandle(0x7ff01);
const HANDLE kThread = FakeHandle(0x7ff05);

// What the fakes were asked for and answer.
struct FakeProcess {
    BOOL starts = TRUE;
    DWORD waitResult = WAIT_OBJECT_0;
    BOOL hasExitCode = TRUE;
    DWORD exitCode = 0;
    DWORD lastError = 0;  // what each failing call leaves
    STARTUPINFOW startup{};
    bool othersAreNull = false;
    BOOL inheritsHandles = FALSE;
    DWORD flags = 0;
};
FakeProcess process;

class InstallerProcessTest : public test::InstallerTest {
  protected:
    InstallerProcessTest() {
        process = {};
        options_.wait = true;
    }

    std::int32_t Launch() { return LaunchInstaller(options_, "\"i.exe\" \"\xC3\xA4\""); }

  private:
    const test::Hook<decltype(&CreateProcessW)> create_{
        "CreateProcessW",
        [](auto, LPCWSTR application, LPWSTR commandLine, LPSECURITY_ATTRIBUTES processSecurity,
           LPSECURITY_ATTRIBUTES threadSecurity, BOOL inherit, DWORD flags, LPVOID environment,
           LPCWSTR folder, LPSTARTUPINFOW startup, LPPROCESS_INFORMATION information) {
            test::Record("start " + ToNarrow(commandLine));
            *commandLine = L'X';  // the real one may write here, too
            process.othersAreNull =
                !application && !processSecurity && !threadSecurity && !environment && !folder;
            process.inheritsHandles = inherit;
            process.flags = flags;
            process.startup = *startup;
            SetLastError(process.lastError);
            if (process.starts) *information = {kProcess, kThread, 1, 2};
            return process.starts;
        }};
    const test::Hook<decltype(&WaitForSingleObject)> wait_{
        "WaitForSingleObject", [](auto real, HANDLE handle, DWORD milliseconds) {
            if (handle != kProcess) return real(handle, milliseconds);
            test::Record(milliseconds == INFINITE ? "wait without limit" : "wait with a limit");
            return process.waitResult;
        }};
    const test::Hook<decltype(&GetExitCodeProcess)> exitCode_{
        "GetExitCodeProcess", [](auto, HANDLE handle, LPDWORD code) {
            test::Record(handle == kProcess ? "exit code" : "exit code of another");
            if (process.hasExitCode) *code = process.exitCode;
            return process.hasExitCode;
        }};
    const test::Hook<decltype(&CloseHandle)> close_{
        "CloseHandle", [](auto real, HANDLE handle) {
            if (handle == INVALID_HANDLE_VALUE) test::Record("close an invalid handle");
            if (handle != kProcess && handle != kThread) return real(handle);
            test::Record(handle == kProcess ? "close process" : "close thread");
            return TRUE;
        }};
};

TEST_F(InstallerProcessTest, IsWaitedForWithoutLimitAndThenReleased) {
    process.exitCode = 7;
    EXPECT_EQ(Launch(), 7);
    EXPECT_THAT(test::journal, ElementsAre("start \"i.exe\" \"\xC3\xA4\"", "wait without limit",
                                           "exit code", "close process", "close thread"));
}

TEST_F(InstallerProcessTest, IsReleasedAtOnceWhereNobodyWaits) {
    options_.wait = false;
    process.exitCode = 7;
    EXPECT_EQ(Launch(), 0);
    EXPECT_THAT(test::journal,
                ElementsAre("start \"i.exe\" \"\xC3\xA4\"", "close process", "close thread"));
}

TEST_F(InstallerProcessTest, IsReportedWithTheErrorOfItsStartAndTheLineAsItWas) {
    process.starts = FALSE;
    process.lastError = ERROR_ACCESS_DENIED;
    EXPECT_THROW(Launch(), test::ProcessExit);
    EXPECT_THAT(test::journal,
                ElementsAre("start \"i.exe\" \"\xC3\xA4\"",
                            "error: Setup failed to create process\n\"i.exe\" \"\xC3\xA4\"\nrc=5"));
}

TEST_F(InstallerProcessTest, AnswersEvenAfterAFailedWait) {
    process.waitResult = WAIT_FAILED;
    process.exitCode = 7;
    EXPECT_EQ(Launch(), 7);
}

TEST_F(InstallerProcessTest, AnswersZeroWhereTheExitCodeCannotBeRead) {
    process.hasExitCode = FALSE;
    process.exitCode = 7;
    EXPECT_EQ(Launch(), 0);
}

TEST_F(InstallerProcessTest, StartsWithInheritedHandlesAndAllElseByDefault) {
    Launch();
    EXPECT_TRUE(process.othersAreNull);
    EXPECT_EQ(process.inheritsHandles, TRUE);
    EXPECT_EQ(process.flags, 0u);
    STARTUPINFOW expected{};
    expected.cb = sizeof expected;
    expected.wShowWindow = 5;
    EXPECT_EQ(std::memcmp(&process.startup, &expected, sizeof expected), 0);
#ifdef _WIN64
    EXPECT_EQ(process.startup.cb, 104u);
#endif
}

TEST_F(InstallerProcessTest, StartsWithoutAWindowWhenAskedTo) {
    InstallerProcess installer("i.exe");
    EXPECT_TRUE(installer.Start(false));
    EXPECT_EQ(process.flags, 0x08000000u);
}

TEST_F(InstallerProcessTest, HoldsNothingBeforeItIsStarted) {
    { const InstallerProcess installer("i.exe"); }
    EXPECT_THAT(test::journal, ElementsAre());
}

TEST(ProcessInformation, ClosesBothHandles) {
    const std::size_t before = test::OpenHandleCount();
    {
        ProcessInformation child;
        EXPECT_EQ(child.hProcess, INVALID_HANDLE_VALUE);
        EXPECT_EQ(child.hThread, INVALID_HANDLE_VALUE);
        child.hProcess = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        child.hThread = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        EXPECT_EQ(test::OpenHandleCount(), before + 2);
    }
    EXPECT_EQ(test::OpenHandleCount(), before);
}

}  // namespace
}  // namespace launcher
