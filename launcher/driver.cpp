#include "launcher/driver.h"

#include <cstddef>
#include <string>
#include <vector>

#include "fs/environment.h"
#include "installer/environment.h"
#include "installer/launch.h"
#include "launcher/command_line.h"
#include "launcher/find_installer.h"
#include "launcher/launch_options.h"
#include "launcher/message.h"
#include "launcher/requirements.h"
#include "launcher/temporary_copy.h"
#include "media/volumes.h"

namespace launcher {
namespace {

// Tells the installer where the volumes from the second on are.
void ExportVolumePaths(const std::vector<std::string>& volumes) {
    for (std::size_t i = 0; i < volumes.size(); ++i)
        SetEnvVar("ZEPAdmInstVolumePath_" + std::to_string(i + 2), volumes[i]);
}

// On the console only. The wording speaks of volumes, but it goes with every copied media that is
// waited for; keep it so.
void WarnOfRemovableMedia(LaunchOptions& options) {
    for (const char* text :
         {"This media is composed of multiple volumes.",
          "If it is not done already, please copy each volume on a local hard drive before "
          "starting the installation.",
          "Not doing so might result in the installation leaving temporary files behind."})
        ReportMessage(options, text, Severity::Warning, true);
}

}  // namespace

int RunLauncher(LaunchOptions& options) {
    if (!HasRequiredWebLibrary(options)) return 1;
    WarnOfOldWindows(options);
    FindInstaller(options);

    std::vector<std::string> volumes;
    const int volumeCount = ResolveVolumes(options, volumes);
    if (!GetEnvVar("ZEPAdmODTMultiVolumes").empty()) return volumeCount;
    if (volumeCount > 1) ExportVolumePaths(volumes);

    const std::string temporaryDir = NewTemporaryDirName();
    CopyInstallerToTemporaryDir(options, temporaryDir);
    PrepareInstallerEnvironment(options);
    const std::string commandLine = BuildInstallerCommandLine(options);
    if (options.temporaryCopyMade) {
        WriteRemoveScript(temporaryDir);
        if (options.wait) WarnOfRemovableMedia(options);
    }
    return LaunchInstaller(options, commandLine);
}

}  // namespace launcher
