#include "platform/windows_version.h"

#include <windows.h>

namespace launcher {

bool DetectWindows8() {
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

}  // namespace launcher
