#pragma once

#include <string>

namespace launcher {

class LaunchOptions;

// While it is set, nothing is copied.
inline constexpr char kDontCopyVar[] = "ZEPAdmInstDontCopyInstaller";

// The name of a new private folder below the user's temporary folder, "TEMP" + "\" + a UUID + "\".
// Nothing is created.
std::string NewTemporaryFolderName();

// True while kDontCopyVar is set.
bool IsCopyForbidden();

// Copies the installer's part of the media into `temporaryDir`, so that the media may be removed
// during the installation, and moves `mediaDir` and `installerExePath` onto the copy; or leaves
// everything in place when IsCopyForbidden() or `skipTemporaryCopy` says so.
// "ZEPAdmInstOriginalMediaDir" tells the installer of the media it was copied from, and is removed
// without a copy.
//
// A failed copy is reported, "Cannot copy the installer to a temporary directory: " and then the
// failure's own text, and ends the process with exit code 1; what was copied stays. Only the copies
// from a separate installer media may fail silently.
void CopyInstallerToTemporaryFolder(LaunchOptions& options, const std::string& temporaryDir);

}  // namespace launcher
