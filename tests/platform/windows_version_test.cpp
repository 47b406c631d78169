#include "platform/windows_version.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "tests/support/hook.h"

namespace launcher {
namespace {

TEST(WindowsVersion, IsComparedWithWindows8) {
    BOOL answer = TRUE;
    OSVERSIONINFOEXW wanted{};
    DWORD fields = 0;
    ULONGLONG conditions = 0;
    const test::Hook<decltype(&VerifyVersionInfoW)> hook(
        "VerifyVersionInfoW", [&](auto, LPOSVERSIONINFOEXW version, DWORD compared, DWORDLONG how) {
            wanted = *version;
            fields = compared;
            conditions = how;
            return answer;
        });
    EXPECT_TRUE(IsWindows8OrNewer());
    answer = FALSE;
    EXPECT_FALSE(IsWindows8OrNewer());
    EXPECT_EQ(wanted.dwOSVersionInfoSize, sizeof wanted);
    EXPECT_EQ(wanted.dwMajorVersion, 6u);
    EXPECT_EQ(wanted.dwMinorVersion, 2u);
    EXPECT_EQ(wanted.wServicePackMajor, 0u);
    EXPECT_EQ(fields, 0x23u);  // major, minor and service pack
    ULONGLONG atLeast = 0;
    for (const DWORD field :
         {DWORD{VER_MINORVERSION}, DWORD{VER_MAJORVERSION}, DWORD{VER_SERVICEPACKMAJOR}})
        atLeast = VerSetConditionMask(atLeast, field, VER_GREATER_EQUAL);
    EXPECT_EQ(conditions, atLeast);
}

}  // namespace
}  // namespace launcher
