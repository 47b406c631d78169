#include "media/installer_media.h"

#include "fs/file_type.h"
#include "fs/path.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "media/folder_names.h"

namespace launcher {
namespace {

// Where the installer of a medium with the root `root`, ending in a backslash, has to be. Plain
// text: these paths are shown and passed on as given.
struct InstallerPlace {
    InstallerPlace(const LaunchOptions& options, const std::string& root)
        : instFolder(root + kInstFolder + kBackslash),
          exePath(instFolder + options.osFolder + kBackslash + kCodeFolder + kBackslash +
                  kBinFolder + kBackslash + options.installerExeName) {}

    std::string instFolder;
    std::string exePath;
};

}  // namespace

bool LocateInstaller(LaunchOptions& options, const std::string& folder, bool quiet) {
    if (folder.empty()) return false;
    const std::string root = folder.back() == '\\' ? folder : folder + kBackslash;
    InstallerPlace place(options, root + "1" + kBackslash);
    if (!PathExists(place.exePath)) {
        TraceMessage(options,
                     "Installer executable \"" + place.exePath +
                         "\" does not exist, trying without sub dir \"1\"",
                     Severity::Info);
        place = InstallerPlace(options, root);
        if (!PathExists(place.exePath)) {
            if (!quiet)
                ReportMessage(options,
                              "Invalid Installer media, \"" + place.exePath + "\" does not exist",
                              Severity::Info, /*noBox=*/false);
            return false;
        }
    }
    options.mediaInstDir = place.instFolder;
    options.installerExePath = place.exePath;
    TraceMessage(options, "Installer Media: \"" + options.installerExePath + "\"", Severity::Info);
    return true;
}

}  // namespace launcher
