#pragma once

#include <string>

namespace launcher {

class LaunchOptions;

// Looks for the installer in a medium whose root is `folder`: below its first volume's folder "1"
// if it is there, else below "inst". When found, sets `mediaInstDir` and `installerExePath` and
// returns true; otherwise changes neither. Reads `installerExeName` and `osFolder`. An empty
// `folder` holds nothing. Unless `quiet`, a failed lookup is reported as information: the caller
// goes on to other folders. Throws nothing.
bool LocateInstaller(LaunchOptions& options, const std::string& folder, bool quiet);

}  // namespace launcher
