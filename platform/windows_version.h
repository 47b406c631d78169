#pragma once

namespace launcher {

// True on Windows 8 and newer; false when Windows cannot say.
// https://learn.microsoft.com/windows/win32/api/winbase/nf-winbase-verifyversioninfow
bool IsWindows8OrNewer();

}  // namespace launcher
