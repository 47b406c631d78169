// The markers that say which Windows a media is for.

#include <algorithm>
#include <string>
#include <vector>

#include "media/folder_names.h"
#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

std::string MarkerName(const std::string& flavour) {
    return flavour + kFlavourMarkerExtension;
}

bool IsKnown(const std::string& name) {
    return std::ranges::any_of(
        kFlavours, [&name](const char* flavour) { return SameName(name, MarkerName(flavour)); });
}

void CheckName(const Path& folder, const Entry& entry, Findings& out) {
    const std::string name = InLowerCase(entry.name);
    const std::string file = Join(folder, entry.name).Text();
    const std::size_t extension = name.find(kFlavourMarkerExtension);
    if (extension == std::string::npos) return;
    if (IsKnown(name)) {
        if (entry.isFolder)
            out.Warning("flavour-marker-is-folder", file, "The marker is a folder.",
                        "The launcher takes it all the same; other programs may not.",
                        "Put an empty file in its place.");
        return;
    }
    if (extension + sizeof kFlavourMarkerExtension - 1 < name.size()) {
        out.Error(
            "flavour-marker-double-extension", file,
            "The marker has something after .installos in its name.",
            "The launcher does not see it.",
            "Rename it to " + entry.name.substr(0, extension) + kFlavourMarkerExtension + ".");
        return;
    }
    // Markers of other systems may stand beside those of Windows.
    if (name.starts_with("win") || name.starts_with("intel"))
        out.Warning("flavour-marker-unknown", file, "No Windows goes with this marker's name.",
                    "The launcher does not see it.",
                    "Use win_b64.installos, win_csa64.installos or intel_a.installos.");
}

void CheckForMarkersIn(const Path& folder, Findings& out) {
    for (const char* flavour : kFlavours) {
        const Path file = Join(folder, MarkerName(flavour));
        if (!Look(file)) continue;
        out.Error("flavour-marker-misplaced", file.Text(), "The marker is in the wrong folder.",
                  "The launcher looks for it in inst\\common only.", "Move it there.");
    }
}

}  // namespace

void CheckFlavourMarkers(const Subject& subject, Findings& out) {
    const Path inst = Join(subject.Media(), kInstFolder);
    const Path common = Join(inst, kCommonFolder);
    for (const Entry& entry : List(common).value_or(std::vector<Entry>()))
        CheckName(common, entry, out);
    CheckForMarkersIn(subject.Media(), out);
    CheckForMarkersIn(inst, out);
    for (const char* flavour : kFlavours) {
        CheckForMarkersIn(Join(inst, flavour), out);
        const Path exe = InstallerExecutable(subject.Media(), flavour, kInstallerName);
        const Path marker = Join(common, MarkerName(flavour));
        if (!Look(exe) || Look(marker)) continue;
        out.Note("flavour-marker-missing", marker.Text(),
                 std::string("The media has an installer for ") + flavour + ", but not its marker.",
                 "With ZEP_UseExternalInstaller set, the launcher refuses the media.",
                 "Add an empty file of this name.");
    }
}

}  // namespace launcher::mediatool
