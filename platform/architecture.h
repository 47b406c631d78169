#pragma once

namespace launcher {

// True on a 64-bit x64 Windows, even when this process is a 32-bit one. False on every other
// architecture. Never fails.
// https://learn.microsoft.com/windows/win32/api/sysinfoapi/nf-sysinfoapi-getnativesysteminfo
bool Is64BitWindows();

}  // namespace launcher
