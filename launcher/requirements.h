#pragma once

namespace launcher {

class LaunchOptions;

// False, after an error message, when the system's web library is older than the installer needs
// (platform/web_library.h).
bool CheckWebLibrary(const LaunchOptions& options);

// Warns about a Windows older than 8; the decision is the installer's.
void WarnOfOldWindows(const LaunchOptions& options);

}  // namespace launcher
