#pragma once

namespace launcher {

// Both: true on a 64-bit x64 Windows, even when this process is a 32-bit one. False on every other
// architecture. Never fails. The second asks the machine; the first is what the launcher goes by.
// https://learn.microsoft.com/windows/win32/api/sysinfoapi/nf-sysinfoapi-getnativesysteminfo
bool Is64BitWindows();
bool Detect64BitWindows();

}  // namespace launcher
