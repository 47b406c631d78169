// The log of a run, in this process.

#include "mediatool/run/run_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/owners.h"
#include "tests/e2e/support/launcher_test.h"
#include "tests/mediatool/run/support/gate.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher::mediatool {
namespace {

std::string ComplaintOfBeginning(const std::string& path) {
    RunLog log(path);
    try {
        log.Begin("setup.exe");
    } catch (const BadInput& failure) {
        return failure.what();
    }
    return "none";
}

// Whether nobody has the file open any more.
bool IsGivenUpWithin(const std::string& path, DWORD milliseconds) {
    for (const ULONGLONG end = GetTickCount64() + milliseconds; GetTickCount64() < end; Sleep(20))
        if (FileHandle(CreateFileW(ToWide(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0,
                                   nullptr)))
            return true;
    return false;
}

TEST(RunLogTest, IsRefusedOnADiskThatDoesNotAnswer) {
    const test::TemporaryFolder folder;
    const std::string path = folder.Text("log.txt");
    const KernelObject answers(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    std::string complaint;
    {
        const test::Hook<decltype(&::WriteFile)> disk("WriteFile", [&](auto real, auto... given) {
            WaitForSingleObject(answers.Get(), 30000);
            return real(given...);
        });
        DWORD patience = 0;
        const test::Hook<decltype(&SleepConditionVariableSRW)> wait(
            "SleepConditionVariableSRW",
            [&](auto real, auto* changed, auto* lock, DWORD time, ULONG flags) {
                if (time == INFINITE) return real(changed, lock, time, flags);
                patience = time;
                return real(changed, lock, 100, flags);
            });
        complaint = ComplaintOfBeginning(path);
        SetEvent(answers.Get());
        EXPECT_TRUE(IsGivenUpWithin(path, 30000));  // by the thread, before the hooks go
        EXPECT_EQ(patience, 10'000u);
    }
    EXPECT_EQ(complaint, "The log \"" + path + "\" cannot be written: its disk does not answer.");
}

// How a write ends, and the error that is told then.
struct BadWrite : test::Row {
    BOOL isDone;
    DWORD missing;  // bytes
    DWORD error;
    DWORD told;
};
class BadHeading : public testing::TestWithParam<BadWrite> {};

TEST_P(BadHeading, IsRefusedWithTheReason) {
    const test::TemporaryFolder folder;
    const std::string path = folder.Text("log.txt");
    const test::Hook<decltype(&::WriteFile)> disk(
        "WriteFile", [](auto, HANDLE, const void*, DWORD size, DWORD* written, auto) {
            *written = size - GetParam().missing;
            SetLastError(GetParam().error);
            return GetParam().isDone;
        });
    EXPECT_EQ(ComplaintOfBeginning(path),
              "The log \"" + path + "\" cannot be written: " + ErrorText(GetParam().told) + ".");
}

INSTANTIATE_TEST_SUITE_P(
    Table, BadHeading,
    testing::Values(BadWrite{{"Fails"}, FALSE, 0, ERROR_DISK_FULL, ERROR_DISK_FULL},
                    BadWrite{{"WritesLess"}, TRUE, 1, ERROR_DISK_FULL, ERROR_DISK_FULL},
                    BadWrite{{"TellsNoReason"}, TRUE, 1, ERROR_SUCCESS, ERROR_WRITE_FAULT}),
    test::RowName);

// Each line is on the disk when the machine is switched off a moment later.
TEST(RunLogTest, IsWrittenThroughAndAddedToByTwoRunsAtATime) {
    const test::TemporaryFolder folder;
    DWORD flags = 0;
    const test::Hook<decltype(&CreateFileW)> open(
        "CreateFileW", [&flags](auto real, LPCWSTR name, DWORD access, DWORD share, auto* security,
                                DWORD disposition, DWORD asked, HANDLE model) {
            flags = asked;
            return real(name, access, share, security, disposition, asked, model);
        });
    RunLog first(folder.Text("log.txt"));
    RunLog second(folder.Text("log.txt"));
    EXPECT_EQ(flags, DWORD{FILE_FLAG_WRITE_THROUGH});
}

TEST(RunLogTest, LetsEightMegabytesWait) {
    const test::TemporaryFolder folder;
    RunLog log(folder.Text("log.txt"));
    log.Begin("setup.exe");
    const test::Gate gate;
    {
        const test::Hook<decltype(&::WriteFile)> disk("WriteFile", [&](auto real, auto... given) {
            gate.Pass();
            return real(given...);
        });
        const std::size_t number = std::to_string(GetCurrentProcessId()).size() + 2;
        log.Add(std::string(8'388'608 - number - 1, 'x') + "\n");
        EXPECT_FALSE(log.IsFull());
        log.Add("\n");
        EXPECT_TRUE(log.IsFull());
        gate.Open();
        log.Finish();
    }
}

}  // namespace
}  // namespace launcher::mediatool
