#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "fs/environment.h"
#include "tests/support/hook.h"

namespace launcher::test {

// The security functions of a system whose version, group membership and elevation a test chooses.
// Each call first appends its name to `calls`. An error that is not 0 makes that call fail.
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

    std::vector<std::string> calls;
    OSVERSIONINFOW askedVersion{};
    std::vector<DWORD> subAuthorities;  // all eight
    std::vector<BYTE> authority;        // six bytes
    BYTE subAuthorityCount = 0;
    DWORD access = 0;
    HANDLE token = nullptr;
    HANDLE checkedToken = this;
    PSID allocated = nullptr;
    PSID checked = nullptr;
    PSID freed = nullptr;

    ~FakeSecurity() { SetEnvVar("ZEPProcessNotAdmin", ""); }

  private:
    BOOL Result(const char* name, DWORD error = 0) {
        calls.emplace_back(name);
        if (error != 0) SetLastError(error);
        return error == 0;
    }

    BOOL GiveVersion(LPOSVERSIONINFOW version) {
        askedVersion = *version;
        calls.emplace_back("GetVersionExW");
        if (versionFails) return FALSE;
        version->dwMajorVersion = majorVersion;
        return TRUE;
    }

    Hook<decltype(&GetVersionExW)> version_{
        "GetVersionExW", [this](auto, LPOSVERSIONINFOW version) { return GiveVersion(version); }};
    Hook<decltype(&AllocateAndInitializeSid)> allocate_{
        "AllocateAndInitializeSid",
        [this](auto real, PSID_IDENTIFIER_AUTHORITY from, BYTE count, DWORD a, DWORD b, DWORD c,
               DWORD d, DWORD e, DWORD f, DWORD g, DWORD h, PSID* sid) {
            authority.assign(from->Value, from->Value + 6);
            subAuthorityCount = count;
            subAuthorities = {a, b, c, d, e, f, g, h};
            if (allocateError == 0) real(from, count, a, b, c, d, e, f, g, h, sid);
            allocated = *sid;
            return Result("AllocateAndInitializeSid", allocateError);
        }};
    Hook<decltype(&CheckTokenMembership)> check_{
        "CheckTokenMembership", [this](auto, HANDLE of, PSID sid, PBOOL answer) {
            checkedToken = of;
            checked = sid;
            EXPECT_FALSE(*answer) << "not set to false before the call";
            if (member) *answer = TRUE;
            return Result("CheckTokenMembership", membershipCallFails ? ERROR_ACCESS_DENIED : 0);
        }};
    Hook<decltype(&FreeSid)> free_{"FreeSid", [this](auto real, PSID sid) {
                                       freed = sid;
                                       Result("FreeSid");
                                       return real(sid);
                                   }};
    Hook<decltype(&OpenProcessToken)> open_{
        "OpenProcessToken", [this](auto real, HANDLE process, DWORD wanted, PHANDLE handle) {
            EXPECT_EQ(process, GetCurrentProcess());
            access = wanted;
            if (openError == 0) real(process, wanted, handle);
            token = *handle;
            return Result("OpenProcessToken", openError);
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
            return Result("GetTokenInformation", informationError);
        }};
};

}  // namespace launcher::test
