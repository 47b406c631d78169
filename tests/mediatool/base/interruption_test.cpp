// Ctrl+C and what else Windows tells a program of the console, and the events behind it.

#include "mediatool/base/interruption.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

#include "mediatool/base/owners.h"
#include "tests/support/hook.h"

namespace launcher::test {
namespace {

using mediatool::Interruption;

bool IsSet(const Interruption& interruption) {
    return WaitForSingleObject(interruption.Event(), 0) == WAIT_OBJECT_0;
}

// Windows ends the process when the handler of any other kind returns.
TEST(Interruption, ComesByKeysOrForGood) {
    PHANDLER_ROUTINE handler = nullptr;
    std::vector<DWORD> waited;
    const Hook<decltype(&SetConsoleCtrlHandler)> console(
        "SetConsoleCtrlHandler", [&handler](auto, PHANDLER_ROUTINE routine, BOOL) {
            handler = routine;
            return TRUE;
        });
    const Hook<decltype(&Sleep)> sleep("Sleep",
                                       [&waited](auto, DWORD time) { waited.push_back(time); });
    for (const DWORD kind : {DWORD{CTRL_C_EVENT}, DWORD{CTRL_BREAK_EVENT}, DWORD{CTRL_CLOSE_EVENT},
                             DWORD{CTRL_LOGOFF_EVENT}, DWORD{CTRL_SHUTDOWN_EVENT}}) {
        const Interruption interruption;
        EXPECT_FALSE(interruption.HasCome());
        EXPECT_FALSE(IsSet(interruption));
        waited.clear();
        EXPECT_TRUE(handler(kind));
        EXPECT_TRUE(interruption.HasCome());
        EXPECT_TRUE(IsSet(interruption));
        EXPECT_TRUE(IsSet(interruption)) << "for the next who asks too";
        EXPECT_EQ(waited, std::vector<DWORD>(kind > CTRL_BREAK_EVENT ? 1 : 0, INFINITE)) << kind;
    }
}

TEST(KernelObject, IsClosedAtItsEnd) {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    DWORD flags = 0;
    {
        const mediatool::KernelObject owner(event);
        EXPECT_TRUE(GetHandleInformation(event, &flags));
    }
    EXPECT_FALSE(GetHandleInformation(event, &flags));
}

}  // namespace
}  // namespace launcher::test
