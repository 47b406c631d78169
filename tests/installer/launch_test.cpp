// LaunchInstaller with real child processes.

#include "installer/launch.h"

#include <windows.h>

#include "fs/environment.h"
#include "fs/exceptions.h"
#include "tests/installer/fakes.h"
#include "tests/support/fake_messages.h"
#include "tests/support/repeats.h"
#include "tests/support/wine.h"

namespace launcher {
namespace {

using test::ChildCommandLine;
using testing::ElementsAre;

class LaunchTest : public test::InstallerTest {
  protected:
    LaunchTest() {
        SetEnvVar("ZEPAdmInstAllowNotAdminUser", "");
        options_.wait = true;
    }

    std::int32_t LaunchChild(const std::string& arguments) {
        for (test::Repeats repeats;;) {
            try {
                return LaunchInstaller(options_, ChildCommandLine(arguments));
            } catch (const test::ProcessExit&) {
                if (!repeats.AreWorthIt(test::StumbledOverWine(test::journal))) throw;
                test::journal.clear();
            }
        }
    }
};

TEST_F(LaunchTest, HandsBackTheExitCodeWhenItWaits) {
    EXPECT_EQ(LaunchChild("exit 0"), 0);
    EXPECT_EQ(LaunchChild("exit 3"), 3);
    EXPECT_EQ(LaunchChild("exit 0x7FFFFFFF"), 0x7FFFFFFF);
    EXPECT_THAT(test::journal, ElementsAre());
}

TEST_F(LaunchTest, ReportsANegativeExitCodeAsAFailedWait) {
    for (const std::string code : {"0x80000000", "0xC0000005"}) {
        test::journal.clear();
        EXPECT_THROW(LaunchChild("exit " + code), test::ProcessExit);
        EXPECT_THAT(test::journal,
                    ElementsAre(testing::StartsWith("error: Cannot wait for process\n" +
                                                    ChildCommandLine("exit " + code) + "\nrc=")));
    }
}

TEST_F(LaunchTest, AnswersZeroWhenItDoesNotWaitEvenIfTheChildFails) {
    options_.wait = false;
    EXPECT_EQ(LaunchChild("exit 3"), 0);
    EXPECT_THAT(test::journal, ElementsAre());
}

TEST_F(LaunchTest, ReportsAProgramThatDoesNotExist) {
    const std::string commandLine = "\"" + GetModuleDirectory() + "\\none.exe\" \"x\"";
    for (const bool wait : {false, true}) {
        test::journal.clear();
        options_.wait = wait;
        EXPECT_THROW(LaunchInstaller(options_, commandLine), test::ProcessExit);
        EXPECT_THAT(test::journal, ElementsAre("error: Setup failed to create process\n" +
                                               commandLine + "\nrc=2"));
    }
}

TEST_F(LaunchTest, LetsTheChildInheritTheEnvironment) {
    SetEnvVar("LAUNCHER_TEST", "one \xC3\xA4\xE2\x82\xAC");
    EXPECT_EQ(LaunchChild("value LAUNCHER_TEST \"one \xC3\xA4\xE2\x82\xAC\""), 0);
    EXPECT_EQ(LaunchChild("value LAUNCHER_TEST other"), 1);
}

TEST_F(LaunchTest, LetsTheChildInheritHandlesThatAreMeantForIt) {
    for (const bool inheritable : {true, false}) {
        SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, inheritable};
        const HANDLE event = CreateEventW(&attributes, TRUE, FALSE, nullptr);
        LaunchChild("set " + std::to_string(reinterpret_cast<UINT_PTR>(event)));
        EXPECT_EQ(WaitForSingleObject(event, 0),
                  static_cast<DWORD>(inheritable ? WAIT_OBJECT_0 : WAIT_TIMEOUT));
        CloseHandle(event);
    }
}

TEST_F(LaunchTest, RefusesAUserWhoIsNoAdministrator) {
    test::below.isAdministrator = false;
    EXPECT_EQ(LaunchChild("exit 3"), 1);
    EXPECT_THAT(test::journal, ElementsAre("error: The installer must be run from an elevated "
                                           "Command Prompt ('Run as administrator')"));
}

TEST_F(LaunchTest, LaunchesForAnyUserWhenAskedToWhateverTheVariableSays) {
    test::below.isAdministrator = false;
    for (const char* value : {"0", "no", "false", "1"}) {
        test::journal.clear();
        SetEnvVar("ZEPAdmInstAllowNotAdminUser", value);
        EXPECT_EQ(LaunchChild("exit 3"), 3);
        EXPECT_THAT(test::journal, ElementsAre("trace: The user is not admin, but continue."));
    }
}

TEST_F(LaunchTest, AsksForNoAdministratorWhereTheActionOnlyReads) {
    test::below.isAdministrator = false;
    test::below.administratorCheckFails = true;
    options_.softMgtReadOnly = true;
    EXPECT_EQ(LaunchChild("exit 3"), 3);
    EXPECT_EQ(test::below.administratorChecks, 0);
    EXPECT_THAT(test::journal, ElementsAre());
}

TEST_F(LaunchTest, EndsWithAFailedAdministratorCheck) {
    test::below.administratorCheckFails = true;
    EXPECT_THROW(LaunchChild("exit 3"), ZEPInsException);
    EXPECT_THAT(test::journal, ElementsAre());
}

}  // namespace
}  // namespace launcher
