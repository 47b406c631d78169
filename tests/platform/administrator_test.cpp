#include "platform/administrator.h"

#include <windows.h>
// windows.h first.
#include <shlobj.h>

#include <cstring>
#include <string>
#include <vector>

#include "fs/environment.h"
#include "tests/support/handle_count.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/own_process.h"
#include "tests/support/throws.h"

namespace launcher {
namespace {

using test::Hook;
using test::journal;
using test::ThrowsSystemError;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

#ifdef _MSC_VER
#pragma warning(push)
#pragma warning(disable : 4996)  // deprecated, but what the program under test asks
#endif
using GetVersionFunction = decltype(&GetVersionExW);
#ifdef _MSC_VER
#pragma warning(pop)
#endif

// The security functions of a system whose version, group membership and elevation a test chooses.
// Each call is in the journal. An error that is not 0 makes that call fail.
class FakeSecurity {
  public:
    DWORD majorVersion = 10;
    bool versionFails = false;
    bool member = true;
    bool membershipCallFails = false;
    bool elevated = true;
    DWORD allocateError = 0;
    DWORD openError = 0;
    DWORD informationError = 0;

    // What was asked for.
    OSVERSIONINFOW askedVersion{};
    std::vector<BYTE> authority;
    std::vector<DWORD> subAuthorities;  // all eight, of which so many count:
    BYTE subAuthorityCount = 0;
    DWORD access = 0;
    HANDLE token = nullptr;

  private:
    static BOOL Result(const char* name, DWORD error = 0) {
        test::Record(name);
        if (error != 0) SetLastError(error);
        return error == 0;
    }

    PSID group_ = nullptr;
    Hook<GetVersionFunction> version_{"GetVersionExW", [this](auto, LPOSVERSIONINFOW version) {
                                          askedVersion = *version;
                                          if (!versionFails) version->dwMajorVersion = majorVersion;
                                          return Result("version", versionFails ? 1u : 0u);
                                      }};
    Hook<decltype(&AllocateAndInitializeSid)> allocate_{
        "AllocateAndInitializeSid",
        [this](auto real, PSID_IDENTIFIER_AUTHORITY from, BYTE count, DWORD a, DWORD b, DWORD c,
               DWORD d, DWORD e, DWORD f, DWORD g, DWORD h, PSID* sid) {
            authority.assign(from->Value, from->Value + 6);
            subAuthorityCount = count;
            subAuthorities = {a, b, c, d, e, f, g, h};
            if (allocateError == 0) real(from, count, a, b, c, d, e, f, g, h, sid);
            group_ = *sid;
            return Result("group", allocateError);
        }};
    Hook<decltype(&CheckTokenMembership)> check_{
        "CheckTokenMembership", [this](auto, HANDLE of, PSID sid, PBOOL answer) {
            EXPECT_EQ(of, nullptr);
            EXPECT_EQ(sid, group_);
            EXPECT_FALSE(*answer) << "not set to false before the call";
            if (member) *answer = TRUE;
            return Result("membership", membershipCallFails ? ERROR_ACCESS_DENIED : 0);
        }};
    Hook<decltype(&FreeSid)> free_{"FreeSid", [this](auto real, PSID sid) {
                                       EXPECT_EQ(sid, group_);
                                       Result("free group");
                                       return real(sid);
                                   }};
    Hook<decltype(&OpenProcessToken)> open_{
        "OpenProcessToken", [this](auto real, HANDLE process, DWORD wanted, PHANDLE handle) {
            EXPECT_EQ(process, GetCurrentProcess());
            access = wanted;
            if (openError == 0) real(process, wanted, handle);
            token = *handle;
            return Result("token", openError);
        }};
    Hook<decltype(&GetTokenInformation)> information_{
        "GetTokenInformation", [this](auto, HANDLE of, TOKEN_INFORMATION_CLASS kind, LPVOID buffer,
                                      DWORD size, PDWORD length) {
            EXPECT_EQ(of, token);
            EXPECT_EQ(kind, TokenElevation);
            EXPECT_EQ(size, 4u);
            EXPECT_NE(length, nullptr);
            if (informationError == 0)
                static_cast<TOKEN_ELEVATION*>(buffer)->TokenIsElevated = elevated;
            return Result("elevation", informationError);
        }};
};

class AdministratorTest : public test::IsolatedTest {
  protected:
    AdministratorTest() { SetEnvVar("ZEPProcessNotAdmin", ""); }

  private:
    test::SameHandlesAtTheEnd handles_;

  protected:
    FakeSecurity system_;
};

TEST_F(AdministratorTest, IsAnElevatedMember) {
    EXPECT_TRUE(DetectAdministrator());
    system_.elevated = false;
    EXPECT_FALSE(DetectAdministrator());
}

// A standard user, and since Vista a member whose token has the group for denying alone.
TEST_F(AdministratorTest, IsNobodyElseAndTheTokenStaysUnopened) {
    system_.member = false;
    EXPECT_FALSE(DetectAdministrator());
    EXPECT_THAT(journal, Not(Contains("token")));
}

TEST_F(AdministratorTest, IsAMemberOfTheBuiltInGroup) {
    DetectAdministrator();
    EXPECT_THAT(system_.authority, ElementsAre(0, 0, 0, 0, 0, 5));
    EXPECT_EQ(system_.subAuthorityCount, 2);
    EXPECT_THAT(system_.subAuthorities, ElementsAre(32, 544, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(journal, Contains("free group").Times(1));
    EXPECT_EQ(system_.access, 0x20008u);  // the token is only read
}

// Vista, version 6, is the first system with elevation.
TEST_F(AdministratorTest, NeedsNoElevationBeforeVista) {
    system_.elevated = false;
    system_.majorVersion = 5;
    EXPECT_TRUE(DetectAdministrator());
    EXPECT_THAT(journal, Not(Contains("token")));
    system_.majorVersion = 6;
    EXPECT_FALSE(DetectAdministrator());
    system_.majorVersion = 5;
    system_.member = false;
    EXPECT_FALSE(DetectAdministrator());
}

TEST_F(AdministratorTest, TakesAnUnknownVersionForAnOldOne) {
    system_.versionFails = true;
    system_.elevated = false;
    EXPECT_TRUE(DetectAdministrator());
    OSVERSIONINFOW clean{};
    clean.dwOSVersionInfoSize = 276;
    EXPECT_EQ(std::memcmp(&system_.askedVersion, &clean, sizeof clean), 0);
}

// Only the flag counts, whatever the call itself answers.
TEST_F(AdministratorTest, DoesNotLookAtTheMembershipCallsResult) {
    system_.membershipCallFails = true;
    EXPECT_TRUE(DetectAdministrator());
    system_.member = false;
    EXPECT_FALSE(DetectAdministrator());
}

// Any value at all; the system is not even asked.
TEST_F(AdministratorTest, IsNobodyWhenTheVariableSaysSo) {
    for (const char* const value : {"1", "0", "no", " "}) {
        SetEnvVar("ZEPProcessNotAdmin", value);
        EXPECT_FALSE(DetectAdministrator()) << value;
    }
    EXPECT_THAT(journal, IsEmpty());
}

TEST_F(AdministratorTest, IsUnknownWhenACallFails) {
    system_.informationError = ERROR_BAD_LENGTH;
    EXPECT_THAT([] { DetectAdministrator(); },
                ThrowsSystemError("GetTokenInformation failed.", ERROR_BAD_LENGTH));
    system_.openError = ERROR_ACCESS_DENIED;
    EXPECT_THAT([] { DetectAdministrator(); },
                ThrowsSystemError("OpenProcessToken failed.", ERROR_ACCESS_DENIED));
    EXPECT_THAT(journal, Contains("free group").Times(2));
    system_.allocateError = ERROR_NOT_ENOUGH_MEMORY;
    EXPECT_THAT([] { DetectAdministrator(); },
                ThrowsSystemError("AllocateAndInitializeSid failed.", ERROR_NOT_ENOUGH_MEMORY));
}

// The exception asks for its text when it is made: by then the token must be closed.
TEST_F(AdministratorTest, ClosesTheTokenBeforeItThrows) {
    system_.informationError = ERROR_BAD_LENGTH;
    int asked = 0;
    using FormatMessageFunction =
        DWORD(WINAPI*)(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, char**);
    const Hook<FormatMessageFunction> hook("FormatMessageW", [&](auto&&...) {
        DWORD flags = 0;
        EXPECT_FALSE(GetHandleInformation(system_.token, &flags));
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
        SetEnvVar("ZEPProcessNotAdmin", "1");
        system.elevated = false;
        EXPECT_TRUE(IsAdministrator());
        EXPECT_THAT(journal, Contains("version").Times(1));
    });
}

TEST(IsAdministratorDeathTest, KeepsAFirstAnswerOfNo) {
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
        system.openError = 0;
        EXPECT_TRUE(IsAdministrator());
    });
}

}  // namespace
}  // namespace launcher
