#include "launcher/find_installer.h"

#include <string>

#include "fs/environment.h"
#include "fs/file_operations.h"
#include "fs/owners.h"
#include "fs/path.h"
#include "installer/folder_dialog.h"
#include "launcher/launch_options.h"
#include "launcher/message.h"
#include "media/layout.h"
#include "media/locate_installer.h"
#include "platform/architecture.h"

namespace launcher {
namespace {

// One operating-system flavour of a media: where its installer and its marker would be. The
// marker's existence says that the media, or the separate installer media it needs, is made for
// that flavour.
struct Flavour {
    Flavour(const LaunchOptions& options, const std::string& folder)
        : osFolder(folder),
          exe(InstallerPath(options.mediaDir, folder, options.installerExeName).Text()),
          marker(
              Join(Join(Join(options.mediaDir, kInstFolder), kCommonFolder), folder + ".installos")
                  .Text()) {}

    std::string osFolder;
    std::string exe;
    std::string marker;
};

struct Flavours {
    explicit Flavours(const LaunchOptions& options)
        : b64(options, "win_b64"), csa64(options, "win_csa64"), intel(options, "intel_a") {
        // One file to test for every flavour, used as it is given.
        const std::string marker = GetEnvVar("ZEPAdmInstODTinstallOSpath");
        if (!marker.empty()) b64.marker = csa64.marker = intel.marker = marker;
    }

    Flavour b64;
    Flavour csa64;
    Flavour intel;
};

void Trace(LaunchOptions& options, const std::string& text) {
    TraceMessage(options, text, Severity::Info);
}

void UseInstallerOf(LaunchOptions& options, const Flavour& flavour) {
    options.installerExePath = flavour.exe;
    options.osFolder = flavour.osFolder;
}

void FindFor64BitWindows(LaunchOptions& options, const Flavours& flavours) {
    Trace(options, "64-bit OS");
    for (const Flavour* flavour : {&flavours.b64, &flavours.csa64, &flavours.intel}) {
        if (!PathExists(flavour->exe)) continue;
        UseInstallerOf(options, *flavour);
        return;
    }
}

void FindFor32BitWindows(LaunchOptions& options, const Flavours& flavours) {
    Trace(options, "32-bit OS");
    if (PathExists(flavours.intel.exe)) {
        UseInstallerOf(options, flavours.intel);
        return;
    }
    if (PathExists(flavours.b64.exe) || PathExists(flavours.csa64.exe) ||
        (!PathExists(flavours.intel.marker) &&
         (PathExists(flavours.b64.marker) || PathExists(flavours.csa64.marker))))
        ReportErrorAndExit(options,
                           "This media cannot be installed on a 32-bit Windows operating system.");
}

// Says what was found in the current media, and drops it when another installer is asked for.
void ApplyExternalInstallerSwitch(LaunchOptions& options) {
    const std::string& exe = options.installerExePath;
    if (exe.empty()) {
        Trace(options, "No installer in the current media.");
    } else if (GetEnvVar("ZEP_UseExternalInstaller").empty()) {
        Trace(options, "Installer found in current media: \"" + exe + "\".");
    } else {
        Trace(options, "Installer found in the current media, \"" + exe +
                           "\" but do not use it because of ZEP_UseExternalInstaller env var.");
        options.installerExePath.clear();
    }
}

void ChooseFlavourFromMarkers(LaunchOptions& options, const Flavours& flavours, bool is64Bit) {
    const auto chooses = [&options](const Flavour& flavour) {
        if (!PathExists(flavour.marker)) return false;
        Trace(options, flavour.marker + " found, os " + flavour.osFolder);
        options.osFolder = flavour.osFolder;
        return true;
    };
    if (is64Bit && (chooses(flavours.b64) || chooses(flavours.csa64))) return;
    if (chooses(flavours.intel)) return;
    for (const Flavour* flavour : {&flavours.intel, &flavours.b64, &flavours.csa64})
        Trace(options, flavour->marker + " not found");
    ReportErrorAndExit(options, "This media is not for Windows operating system.");
}

bool LocateByOption(LaunchOptions& options) {
    const std::string& folder = options.installerPath;
    if (!folder.empty())
        Trace(options, "Argument \"-installerPath\" found and its value is \"" + folder + "\".");
    return LocateInstaller(options, folder, false);
}

bool LocateByVariable(LaunchOptions& options) {
    const std::string folder = GetEnvVar("ZEP_TALVOR_Installer");
    if (!folder.empty())
        Trace(options, "Environment variable ZEP_TALVOR_Installer is defined and its value is \"" +
                           folder + "\".");
    return LocateInstaller(options, folder, false);
}

bool LocateByDialog(LaunchOptions& options) {
    const ComApartment com;
    return SelectInstallerFolder(options) && !options.installerExePath.empty();
}

void FindElsewhere(LaunchOptions& options) {
    constexpr char kNotFound[] =
        "The installer is not found, please read the file \"ReadMe_Windows.txt\".";
    if (LocateByOption(options) || LocateByVariable(options)) return;
    if (!options.useGui)
        ReportErrorAndExit(options, std::string(kNotFound) +
                                        "\nYou can also launch this executable again with the "
                                        "'-UI' argument to open a directory browse dialog box to "
                                        "select the installer directory.");
    if (!LocateByDialog(options)) ReportErrorAndExit(options, kNotFound);
}

}  // namespace

void FindInstaller(LaunchOptions& options) {
    const Flavours flavours(options);
    const bool is64Bit = Is64BitWindows();
    if (is64Bit)
        FindFor64BitWindows(options, flavours);
    else
        FindFor32BitWindows(options, flavours);
    ApplyExternalInstallerSwitch(options);
    if (!options.installerExePath.empty()) return;
    ChooseFlavourFromMarkers(options, flavours, is64Bit);
    FindElsewhere(options);
}

}  // namespace launcher
