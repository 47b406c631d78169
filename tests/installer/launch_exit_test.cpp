// How a failed launch ends the process: with the real messages and real children.

#include <gmock/gmock.h>
#include <windows.h>

#include <cstdlib>

#include "fs/exceptions.h"
#include "installer/launch.h"
#include "platform/administrator.h"
#include "tests/installer/launch_child.h"
#include "tests/launcher/base/message_boxes.h"
#include "tests/launcher/base/options_fields.h"

namespace launcher {

bool IsAdministrator() {
    return true;
}

namespace {

using testing::ExitedWithCode;
using testing::StrEq;

// Launches and waits, as the launcher does; ends the process with 99 if the launch comes back.
[[noreturn]] void LaunchAndExit(const std::string& commandLine) {
    const test::MessageBoxPrinter printer;
    LaunchOptions options = test::ParseOptions({"-wait"});
    LaunchInstaller(options, commandLine);
    std::exit(99);
}

TEST(LaunchDeathTest, NamesTheProgramThatDoesNotExist) {
    EXPECT_EXIT(LaunchAndExit("\"none.exe\" \"x y\""), ExitedWithCode(1),
                StrEq("box: Setup failed to create process\n\"none.exe\" \"x y\"\nrc=2\nmsg=" +
                      SystemErrorText(ERROR_FILE_NOT_FOUND) + "\r\n\n"));
}

TEST(LaunchDeathTest, NamesTheProgramThatCrashed) {
    for (const std::string code : {"0x80000000", "0xC0000005"}) {
        const std::string commandLine = test::ChildCommandLine("exit " + code);
        EXPECT_EXIT(LaunchAndExit(commandLine), ExitedWithCode(1),
                    testing::StartsWith("box: Cannot wait for process\n" + commandLine + "\nrc="));
    }
}

}  // namespace
}  // namespace launcher
