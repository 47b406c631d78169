#pragma once

namespace launcher {

class LaunchOptions;

// Chooses the installer and sets `installerExePath` and `osFolder`: the one in the current media,
// for the first flavour that suits this Windows; or else, for the flavour that the media's flavour
// markers name, the one in a separate installer media: in the folder of "-installerPath", in that
// of "ZEP_TALVOR_Installer", or in one that the user picks (these set `mediaInstDir` too). Which of
// these lookups found it, and where, is recorded. Each step is traced. A medium for another
// system, and an installer that is nowhere, are reported and end the process with exit code 1.
void ChooseInstaller(LaunchOptions& options);

}  // namespace launcher
