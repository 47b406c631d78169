#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "launcher/remove_script.h"
#include "tests/support/handle_count.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

TEST(RemoveScriptFailure, LeavesAnEmptyScriptOnAFullDisk) {
    const test::TemporaryFolder folder;
    {
        const test::SameHandlesAtTheEnd handles;
        const test::Hook<decltype(&WriteFile)> full("WriteFile",
                                                    test::FailsWith(ERROR_DISK_FULL, FALSE));
        WriteRemoveScript(folder.Text() + "\\");
    }
    EXPECT_EQ(test::ReadFile(folder.Dir() / "remove.bat"), "");
}

}  // namespace
}  // namespace launcher
