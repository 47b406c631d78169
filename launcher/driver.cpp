#include "launcher/driver.h"

#include <string>
#include <vector>

#include "fs/environment.h"
#include "installer/installer_environment.h"
#include "installer/launch.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "launcher/choose_installer.h"
#include "launcher/installer_command_line.h"
#include "launcher/remove_script.h"
#include "launcher/requirements.h"
#include "launcher/temporary_copy.h"
#include "media/volumes.h"

namespace launcher {
namespace {

// On the console only. Deliberate: despite the wording, shown for every copied media when waiting.
void WarnOfRemovableMedia(const LaunchOptions& options) {
    for (const char* text :
         {"This media is composed of multiple volumes.",
          "If it is not done already, please copy each volume on a local hard drive before "
          "starting the installation.",
          "Not doing so might result in the installation leaving temporary files behind."})
        ReportMessage(options, text, Severity::Warning, /*noBox=*/true);
}

}  // namespace

bool IsVolumeCountAskedFor() {
    return !GetEnvVar(kVolumesQuery).empty();
}

int RunLauncher(LaunchOptions& options) {
    if (!CheckWebLibrary(options)) return 1;
    WarnOfOldWindows(options);
    ChooseInstaller(options);

    std::vector<std::string> volumes;
    const int volumeCount = ResolveVolumes(options, volumes);
    if (IsVolumeCountAskedFor()) return volumeCount;
    if (volumeCount > 1) ExportVolumePaths(volumes);

    const std::string temporaryDir = NewTemporaryFolderName();
    CopyInstallerToTemporaryFolder(options, temporaryDir);
    PrepareInstallerEnvironment(options);
    const std::string commandLine = BuildInstallerCommandLine(options);
    if (options.temporaryCopyMade) {
        WriteRemoveScript(temporaryDir);
        if (options.wait) WarnOfRemovableMedia(options);
    }
    return LaunchInstaller(options, commandLine);
}

}  // namespace launcher
