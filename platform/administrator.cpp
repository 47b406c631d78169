#include "platform/administrator.h"

#include <windows.h>

#include "fs/environment.h"
#include "fs/exceptions.h"
#include "platform/owners.h"

namespace launcher {
namespace {

constexpr DWORD kWindowsVista = 6;

// The major version as the manifest lets it be seen, which is enough to tell Vista from older
// systems; 0 on failure.
DWORD WindowsMajorVersion() {
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
#ifdef _MSC_VER
#pragma warning(push)
#pragma warning(disable : 4996)  // deprecated, but the only such call on every system
#endif
    GetVersionExW(&version);
#ifdef _MSC_VER
#pragma warning(pop)
#endif
    return version.dwMajorVersion;
}

Sid AdministratorsGroup() {
    SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
    Sid group;
    if (!AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID,
                                  DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0, group.Put()))
        ThrowLastError("AllocateAndInitializeSid failed.");
    return group;
}

// Deny-only membership, as in the filtered token of an administrator, does not count.
bool IsMember(const Sid& group) {
    BOOL member = FALSE;
    CheckTokenMembership(nullptr, group.Get(), &member);
    return member != FALSE;
}

bool IsProcessElevated() {
    TokenHandle token;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_READ, token.Put()))
        ThrowLastError("OpenProcessToken failed.");
    TOKEN_ELEVATION elevation{};
    DWORD length = 0;
    if (!GetTokenInformation(token.Get(), TokenElevation, &elevation, sizeof elevation, &length)) {
        const DWORD error = GetLastError();
        token.Reset();  // closed before anything else, in a run that this exception ends
        throw ZEPInsException("GetTokenInformation failed.", error);
    }
    return elevation.TokenIsElevated != 0;
}

}  // namespace

bool IsAdministratorHidden() {
    return !GetEnvVar(kNotAdministratorVar).empty();
}

bool DetectAdministrator() {
    if (IsAdministratorHidden()) return false;
    const DWORD majorVersion = WindowsMajorVersion();
    if (!IsMember(AdministratorsGroup())) return false;
    return majorVersion < kWindowsVista || IsProcessElevated();
}

}  // namespace launcher
