#pragma once

namespace launcher {

// While it is set, nobody is an administrator.
inline constexpr char kNotAdministratorVar[] = "ZEPProcessNotAdmin";

// True when this process runs with administrator rights: its user is a member of the
// Administrators group and, since Windows Vista, its token is elevated. Always false while
// kNotAdministratorVar is set. Computed on the first call and kept; if that call throws, the next
// one tries again. Throws as DetectAdministrator.
bool IsAdministrator();

// As IsAdministrator, but computed anew on every call. Throws ZEPInsException with the name of the
// call that failed ("AllocateAndInitializeSid failed.", "OpenProcessToken failed.",
// "GetTokenInformation failed.") and the system's text.
// https://learn.microsoft.com/windows/win32/api/securitybaseapi/nf-securitybaseapi-checktokenmembership
bool DetectAdministrator();

// True while kNotAdministratorVar is set.
bool IsAdministratorHidden();

}  // namespace launcher
