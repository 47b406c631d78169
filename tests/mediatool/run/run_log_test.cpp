// The log of a run, in this process.

#include "mediatool/run/run_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/owners.h"
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

}  // namespace
}  // namespace launcher::mediatool
