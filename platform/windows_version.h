#pragma once

namespace launcher {

// Both: true on Windows 8 and newer; false when Windows cannot say. The second asks the machine;
// the first is what the launcher goes by.
// https://learn.microsoft.com/windows/win32/api/winbase/nf-winbase-verifyversioninfow
bool IsWindows8OrNewer();
bool DetectWindows8();

}  // namespace launcher
