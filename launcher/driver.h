#pragma once

namespace launcher {

class LaunchOptions;

// The variable that asks only for the number of volumes.
inline constexpr char kVolumesQuery[] = "ZEPAdmODTMultiVolumes";

// True while it does.
bool IsVolumeCountAskedFor();

// The whole run after the command line is read: checks the machine, finds the installer and the
// volumes of the media, copies the installer to a temporary folder, prepares its environment and
// starts it. Returns the process's exit code: 1 for every refusal, the number of volumes when
// it is asked for, else the result of LaunchInstaller. Most failures end the
// process from within, after a message, with exit code 1.
int RunLauncher(LaunchOptions& options);

}  // namespace launcher
