#include "launcher/requirements.h"

#include <windows.h>

#include "fs/owners.h"
#include "launcher/message.h"

namespace launcher {
namespace {

// https://learn.microsoft.com/windows/win32/api/winbase/nf-winbase-verifyversioninfow
bool IsWindows8OrNewer() {
    OSVERSIONINFOEXW wanted{};
    wanted.dwOSVersionInfoSize = sizeof wanted;
    wanted.dwMajorVersion = 6;
    wanted.dwMinorVersion = 2;
    constexpr DWORD kFields[] = {VER_MINORVERSION, VER_MAJORVERSION, VER_SERVICEPACKMAJOR};
    ULONGLONG conditions = 0;
    DWORD fields = 0;
    for (const DWORD field : kFields) {
        conditions = VerSetConditionMask(conditions, field, VER_GREATER_EQUAL);
        fields |= field;
    }
    return VerifyVersionInfoW(&wanted, fields, conditions) != 0;
}

}  // namespace

bool HasRequiredWebLibrary(LaunchOptions& options) {
    // Mapped only to look at its exports; none of its code runs.
    const Library library(LoadLibraryExW(L"wininet.dll", nullptr, DONT_RESOLVE_DLL_REFERENCES));
    if (!library || GetProcAddress(library.Get(), "HttpWebSocketReceive") != nullptr) return true;
    ReportMessage(options,
                  "Internet Explorer 10 or later is required to run the installer. Please install "
                  "it and try again.",
                  Severity::Error, false);
    return false;
}

void WarnOfOldWindows(LaunchOptions& options) {
    if (IsWindows8OrNewer()) return;
    ReportMessage(options,
                  "This version of Windows is not supported anymore.\nPlease check the certified "
                  "platforms in the Program Directory.",
                  Severity::Warning, false);
}

}  // namespace launcher
