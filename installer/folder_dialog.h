#pragma once

namespace launcher {

class LaunchOptions;

// Lets the user pick the folder of the separate installer media in the system's folder dialog. Its
// OK button shows only on a folder in which the installer was just found; what was found is in
// `installerExePath` and `mediaInstDir` and stays there, even after a later cancel. Returns true
// when a folder was confirmed, false on a cancel and whenever the dialog fails; reports nothing.
// COM is initialised on this thread for as long as it runs.
// https://learn.microsoft.com/windows/win32/shell/common-file-dialog
bool SelectInstallerFolder(LaunchOptions& options);

}  // namespace launcher
