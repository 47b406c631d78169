// A source that does not tell its times.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "fs/copy.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using test::Hook;

// Zero is Windows's word for "leave this time alone".
TEST(FileCopySourceTimes, AreLeftAloneWhenTheSourceTellsNone) {
    const test::TemporaryFolder folder;
    const std::string source = folder.Write("source", "content");
    const Hook<decltype(&GetFileTime)> silent("GetFileTime",
                                              test::FailsWith(ERROR_ACCESS_DENIED, FALSE));
    int calls = 0;
    const Hook<decltype(&SetFileTime)> set(
        "SetFileTime", [&](auto, HANDLE, const FILETIME* created, const FILETIME* accessed,
                           const FILETIME* modified) {
            ++calls;
            EXPECT_EQ(created, nullptr);
            for (const FILETIME* time : {accessed, modified}) {
                EXPECT_EQ(time->dwLowDateTime, 0u);
                EXPECT_EQ(time->dwHighDateTime, 0u);
            }
            return TRUE;
        });
    Copy(source, folder.Text("copy"));
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(test::ReadFile(folder.Dir() / "copy"), "content");
}

}  // namespace
}  // namespace launcher
