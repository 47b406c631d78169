#pragma once

namespace launcher {

class LaunchOptions;

// While it is set, the installer in the current media is ignored.
inline constexpr char kIgnoreCurrentMediaVar[] = "ZEP_UseExternalInstaller";

// A media folder to look for the installer in.
inline constexpr char kInstallerFolderVar[] = "ZEP_TALVOR_Installer";

// Chooses the installer and sets `installerExePath` and `osFolder`: the one in the current media,
// for the first flavour that suits this Windows; or else, for the flavour that the media's flavour
// markers name, the one in a separate installer media: in the folder of "-installerPath", in that
// of kInstallerFolderVar, or in one that the user picks (these set `mediaInstDir` too). Which of
// these lookups found it, and where, is recorded. Each step is traced. A medium for another
// system, and an installer that is nowhere, are reported and end the process with exit code 1.
void ChooseInstaller(LaunchOptions& options);

}  // namespace launcher
