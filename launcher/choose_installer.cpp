#include "launcher/choose_installer.h"

#include <algorithm>
#include <string>
#include <vector>

#include "fs/environment.h"
#include "fs/file_type.h"
#include "installer/folder_dialog.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "media/flavours.h"
#include "media/installer_media.h"
#include "platform/architecture.h"

namespace launcher {
namespace {

using Flavours = std::vector<Flavour>;

void Trace(const LaunchOptions& options, const std::string& text) {
    TraceMessage(options, text, Severity::Info);
}

void TakeFromCurrentMedia(LaunchOptions& options, const Flavours& flavours, bool is64Bit) {
    const auto flavour = std::ranges::find_if(flavours, [is64Bit](const Flavour& candidate) {
        return Suits(candidate, is64Bit) && PathExists(candidate.installer);
    });
    if (flavour == flavours.end()) return;
    options.installerExePath = flavour->installer;
    options.osFolder = flavour->osFolder;
}

// A medium without an installer for 32-bit Windows that has one for 64-bit Windows, or is marked
// for that alone, is refused there.
void RefuseOn32BitWindows(const LaunchOptions& options, const Flavours& flavours) {
    const auto any = [&flavours](bool needs64Bit, std::string Flavour::*path) {
        return std::ranges::any_of(flavours, [needs64Bit, path](const Flavour& flavour) {
            return flavour.needs64BitWindows == needs64Bit && PathExists(flavour.*path);
        });
    };
    if (any(true, &Flavour::installer) ||
        (!any(false, &Flavour::marker) && any(true, &Flavour::marker)))
        ReportErrorAndExit(options,
                           "This media cannot be installed on a 32-bit Windows operating system.");
}

// Says what the current media holds; true when that is the installer to use.
bool UsesCurrentMedia(const LaunchOptions& options) {
    const std::string& exe = options.installerExePath;
    if (exe.empty()) {
        Trace(options, "No installer in the current media.");
        return false;
    }
    if (GetEnvVar(kIgnoreCurrentMediaVar).empty()) {
        Trace(options, "Installer found in current media: \"" + exe + "\".");
        return true;
    }
    Trace(options, "Installer found in the current media, \"" + exe +
                       "\" but do not use it because of ZEP_UseExternalInstaller env var.");
    return false;
}

void ChooseFlavourByMarker(LaunchOptions& options, const Flavours& flavours, bool is64Bit) {
    for (const Flavour& flavour : flavours) {
        if (!Suits(flavour, is64Bit) || !PathExists(flavour.marker)) continue;
        Trace(options, flavour.marker + " found, os " + flavour.osFolder);
        options.osFolder = flavour.osFolder;
        return;
    }
    // Those for every Windows are named first; the order is part of the interface.
    for (const bool needs64Bit : {false, true})
        for (const Flavour& flavour : flavours)
            if (flavour.needs64BitWindows == needs64Bit)
                Trace(options, flavour.marker + " not found");
    ReportErrorAndExit(options, "This media is not for Windows operating system.");
}

bool LocateByOption(LaunchOptions& options) {
    const std::string& folder = options.installerPath;
    if (!folder.empty())
        Trace(options, "Argument \"-installerPath\" found and its value is \"" + folder + "\".");
    return LocateInstaller(options, folder, /*quiet=*/false);
}

bool LocateByVariable(LaunchOptions& options) {
    const std::string folder = GetEnvVar(kInstallerFolderVar);
    if (!folder.empty())
        Trace(options, "Environment variable ZEP_TALVOR_Installer is defined and its value is \"" +
                           folder + "\".");
    return LocateInstaller(options, folder, /*quiet=*/false);
}

bool LocateByDialog(LaunchOptions& options) {
    return SelectInstallerFolder(options) && !options.installerExePath.empty();
}

InstallerOrigin TakeFromInstallerMedia(LaunchOptions& options) {
    constexpr char kNotFound[] =
        "The installer is not found, please read the file \"ReadMe_Windows.txt\".";
    if (LocateByOption(options)) return InstallerOrigin::Option;
    if (LocateByVariable(options)) return InstallerOrigin::Variable;
    if (!options.useGui)
        ReportErrorAndExit(options, std::string(kNotFound) +
                                        "\nYou can also launch this executable again with the "
                                        "'-UI' argument to open a directory browse dialog box to "
                                        "select the installer directory.");
    if (!LocateByDialog(options)) ReportErrorAndExit(options, kNotFound);
    return InstallerOrigin::Dialog;
}

}  // namespace

void ChooseInstaller(LaunchOptions& options) {
    const Flavours flavours = MediaFlavours(options);
    const bool is64Bit = Is64BitWindows();
    Trace(options, is64Bit ? "64-bit OS" : "32-bit OS");
    TakeFromCurrentMedia(options, flavours, is64Bit);
    if (!is64Bit && options.installerExePath.empty()) RefuseOn32BitWindows(options, flavours);
    if (UsesCurrentMedia(options)) {
        options.installerOrigin = InstallerOrigin::CurrentMedia;
    } else {
        options.installerExePath.clear();
        ChooseFlavourByMarker(options, flavours, is64Bit);
        options.installerOrigin = TakeFromInstallerMedia(options);
    }
    options.installerFoundAt = options.installerExePath;
}

}  // namespace launcher
