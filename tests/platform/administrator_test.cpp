#include "platform/administrator.h"

#include <gmock/gmock.h>
#include <windows.h>
// windows.h first.
#include <shlobj.h>

#include <cstring>
#include <string>

#include "fs/environment.h"
#include "fs/exceptions.h"
#include "tests/fs/throws.h"
#include "tests/platform/fake_security.h"
#include "tests/platform/own_process.h"
#include "tests/support/handle_count.h"

namespace launcher {
namespace {

using test::FakeSecurity;
using test::ThrowsSystemError;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class DetectAdministratorTest : public testing::Test {
  private:
    test::SameHandlesAtTheEnd handles_;

  protected:
    FakeSecurity system_;
};

TEST_F(DetectAdministratorTest, IsTrueForAnElevatedMember) {
    EXPECT_TRUE(DetectAdministrator());
    EXPECT_THAT(system_.calls,
                ElementsAre("GetVersionExW", "AllocateAndInitializeSid", "CheckTokenMembership",
                            "FreeSid", "OpenProcessToken", "GetTokenInformation"));
}

TEST_F(DetectAdministratorTest, IsFalseForAMemberThatIsNotElevated) {
    system_.elevated = false;
    EXPECT_FALSE(DetectAdministrator());
}

// A standard user, and since Vista a member whose token has the group for denying alone.
TEST_F(DetectAdministratorTest, IsFalseForOthersWithoutOpeningTheToken) {
    system_.member = false;
    EXPECT_FALSE(DetectAdministrator());
    EXPECT_THAT(system_.calls, ElementsAre("GetVersionExW", "AllocateAndInitializeSid",
                                           "CheckTokenMembership", "FreeSid"));
}

TEST_F(DetectAdministratorTest, AsksForTheBuiltInAdministratorsGroup) {
    DetectAdministrator();
    EXPECT_THAT(system_.authority, ElementsAre(0, 0, 0, 0, 0, 5));
    EXPECT_EQ(system_.subAuthorityCount, 2);
    EXPECT_THAT(system_.subAuthorities, ElementsAre(32, 544, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(system_.checked, system_.allocated);
    EXPECT_EQ(system_.freed, system_.allocated);
    EXPECT_EQ(system_.checkedToken, nullptr);
}

TEST_F(DetectAdministratorTest, OpensTheTokenForReading) {
    DetectAdministrator();
    EXPECT_EQ(system_.access, 0x20008u);
}

// Vista, version 6, is the first system with elevation.
TEST_F(DetectAdministratorTest, NeedsNoElevationBeforeVista) {
    system_.elevated = false;
    system_.majorVersion = 5;
    EXPECT_TRUE(DetectAdministrator());
    EXPECT_THAT(system_.calls, ElementsAre("GetVersionExW", "AllocateAndInitializeSid",
                                           "CheckTokenMembership", "FreeSid"));
    system_.majorVersion = 6;
    EXPECT_FALSE(DetectAdministrator());
    system_.majorVersion = 5;
    system_.member = false;
    EXPECT_FALSE(DetectAdministrator());
}

TEST_F(DetectAdministratorTest, TakesAnUntoldVersionForAnOldOne) {
    system_.versionFails = true;
    system_.elevated = false;
    EXPECT_TRUE(DetectAdministrator());
}

TEST_F(DetectAdministratorTest, AsksForTheVersionWithACleanStructure) {
    DetectAdministrator();
    OSVERSIONINFOW clean{};
    clean.dwOSVersionInfoSize = 276;
    EXPECT_EQ(std::memcmp(&system_.askedVersion, &clean, sizeof clean), 0);
}

// Only the flag counts, whatever the call itself answers.
TEST_F(DetectAdministratorTest, DoesNotLookAtTheMembershipCallsResult) {
    system_.membershipCallFails = true;
    EXPECT_TRUE(DetectAdministrator());
    system_.member = false;
    EXPECT_FALSE(DetectAdministrator());
}

// Any value at all; the system is not even asked.
TEST_F(DetectAdministratorTest, IsFalseWhenTheVariableSaysSo) {
    for (const char* const value : {"1", "0", "no", " "}) {
        SetEnvVar("ZEPProcessNotAdmin", value);
        EXPECT_FALSE(DetectAdministrator()) << value;
    }
    EXPECT_THAT(system_.calls, IsEmpty());
    SetEnvVar("ZEPProcessNotAdmin", "");
    EXPECT_TRUE(DetectAdministrator());
}

TEST_F(DetectAdministratorTest, ThrowsWhenTheGroupCannotBeMade) {
    system_.allocateError = ERROR_NOT_ENOUGH_MEMORY;
    EXPECT_THAT([] { DetectAdministrator(); },
                ThrowsSystemError("AllocateAndInitializeSid failed.", ERROR_NOT_ENOUGH_MEMORY));
    EXPECT_THAT(system_.calls, ElementsAre("GetVersionExW", "AllocateAndInitializeSid"));
}

TEST_F(DetectAdministratorTest, ThrowsWhenTheTokenCannotBeOpened) {
    system_.openError = ERROR_ACCESS_DENIED;
    EXPECT_THAT([] { DetectAdministrator(); },
                ThrowsSystemError("OpenProcessToken failed.", ERROR_ACCESS_DENIED));
    EXPECT_THAT(system_.calls, testing::Contains("FreeSid"));
}

TEST_F(DetectAdministratorTest, ThrowsWhenTheTokenTellsNothing) {
    system_.informationError = ERROR_BAD_LENGTH;
    EXPECT_THAT([] { DetectAdministrator(); },
                ThrowsSystemError("GetTokenInformation failed.", ERROR_BAD_LENGTH));
}

bool IsOpen(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != FALSE;
}

// The exception asks for its text when it is made: by then the token must be closed.
TEST_F(DetectAdministratorTest, ClosesTheTokenBeforeItThrows) {
    system_.informationError = ERROR_BAD_LENGTH;
    int asked = 0;
    using FormatMessageFunction =
        DWORD(WINAPI*)(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, char**);
    const test::Hook<FormatMessageFunction> hook("FormatMessageW", [&](auto&&...) {
        EXPECT_FALSE(IsOpen(system_.token));
        ++asked;
        return DWORD{0};
    });
    EXPECT_THROW(DetectAdministrator(), ZEPInsException);
    EXPECT_EQ(asked, 1);
}

TEST(DetectAdministrator, AgreesWithTheRunningSystem) {
    EXPECT_EQ(DetectAdministrator(), IsUserAnAdmin() != FALSE);
}

TEST(IsAdministratorDeathTest, KeepsItsFirstAnswer) {
    test::ExpectInOwnProcess([] {
        FakeSecurity system;
        EXPECT_TRUE(IsAdministrator());
        const auto calls = system.calls;
        SetEnvVar("ZEPProcessNotAdmin", "1");
        system.elevated = false;
        EXPECT_TRUE(IsAdministrator());
        EXPECT_EQ(system.calls, calls);
    });
}

TEST(IsAdministratorDeathTest, KeepsAFirstAnswerOfNoToo) {
    test::ExpectInOwnProcess([] {
        FakeSecurity system;
        SetEnvVar("ZEPProcessNotAdmin", "0");
        EXPECT_FALSE(IsAdministrator());
        SetEnvVar("ZEPProcessNotAdmin", "");
        EXPECT_FALSE(IsAdministrator());
    });
}

TEST(IsAdministratorDeathTest, TriesAgainAfterAFailure) {
    test::ExpectInOwnProcess([] {
        FakeSecurity system;
        system.openError = ERROR_ACCESS_DENIED;
        EXPECT_THAT([] { IsAdministrator(); },
                    ThrowsSystemError("OpenProcessToken failed.", ERROR_ACCESS_DENIED));
        EXPECT_THROW(IsAdministrator(), ZEPInsException);
        system.openError = 0;
        EXPECT_TRUE(IsAdministrator());
    });
}

}  // namespace
}  // namespace launcher
