#pragma once

namespace launcher {

class LaunchOptions;

// Finds the installer and sets `installerExePath` and `osFolder`: in the current media, in the
// per-OS folder that suits this Windows; or else, for the flavour that the media's markers name,
// in the folder of "-installerPath", in that of "ZEP_TALVOR_Installer", or in one that the person
// picks (these set `mediaInstDir` too). Each step is traced. A media for another system and an
// installer that is nowhere are reported and end the process with exit code 1.
void FindInstaller(LaunchOptions& options);

}  // namespace launcher
