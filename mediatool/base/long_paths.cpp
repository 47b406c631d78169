#include "mediatool/base/long_paths.h"

#include <windows.h>

namespace launcher::mediatool {

bool AreLongPathsEnabled() {
    DWORD enabled = 0;
    DWORD size = sizeof enabled;
    return RegGetValueW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\FileSystem",
                        L"LongPathsEnabled", RRF_RT_REG_DWORD, nullptr, &enabled,
                        &size) == ERROR_SUCCESS &&
           enabled == 1;
}

}  // namespace launcher::mediatool
