#pragma once

namespace launcher {

class LaunchOptions;

// False, after an error message, when the system's web library is older than the installer needs
// (that of Internet Explorer 10). A system without the library passes.
bool HasRequiredWebLibrary(LaunchOptions& options);

// Warns of a Windows older than 8. Only warns: the installer itself decides.
void WarnOfOldWindows(LaunchOptions& options);

}  // namespace launcher
