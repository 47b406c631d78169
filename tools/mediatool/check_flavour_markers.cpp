// The markers that say which Windows a media is for.

#include <vector>

#include "media/folder_names.h"
#include "tools/mediatool/checks.h"
#include "tools/mediatool/files.h"

namespace launcher::mediatool {
namespace {

constexpr char kExtension[] = ".installos";
constexpr const char* kNames[] = {"win_b64.installos", "win_csa64.installos", "intel_a.installos"};

bool IsKnown(const std::string& name) {
    for (const char* known : kNames)
        if (SameName(name, known)) return true;
    return false;
}

void CheckName(const Path& folder, const Entry& entry, Findings& out) {
    const std::string name = InLowerCase(entry.name);
    const std::string file = Join(folder, entry.name).Text();
    const std::size_t extension = name.find(kExtension);
    if (extension == std::string::npos) return;
    if (IsKnown(name)) {
        if (entry.isFolder)
            out.Warning("flavour-marker-is-folder", file, "The marker is a folder.",
                        "The launcher takes it all the same; other programs may not.",
                        "Put an empty file in its place.");
        return;
    }
    if (extension + sizeof kExtension - 1 < name.size()) {
        out.Error("flavour-marker-double-extension", file,
                  "The marker has something after .installos in its name.",
                  "The launcher does not see it.",
                  "Rename it to " + entry.name.substr(0, extension) + kExtension + ".");
        return;
    }
    // Markers of other systems may stand beside those of Windows.
    if (name.starts_with("win") || name.starts_with("intel"))
        out.Warning("flavour-marker-unknown", file, "No Windows goes with this marker's name.",
                    "The launcher does not see it.",
                    "Use win_b64.installos, win_csa64.installos or intel_a.installos.");
}

void CheckMisplaced(const Path& folder, Findings& out) {
    for (const char* name : kNames) {
        const Path file = Join(folder, name);
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
    CheckMisplaced(subject.Media(), out);
    CheckMisplaced(inst, out);
    for (const char* flavour : {"win_b64", "win_csa64", "intel_a"}) {
        CheckMisplaced(Join(inst, flavour), out);
        const Path exe = InstallerExecutable(subject.Media(), flavour, kInstallerName);
        const Path marker = Join(common, std::string(flavour) + kExtension);
        if (!Look(exe) || Look(marker)) continue;
        out.Note("flavour-marker-missing", marker.Text(),
                 std::string("The media has an installer for ") + flavour + ", but not its marker.",
                 "With ZEP_UseExternalInstaller set, the launcher refuses the media.",
                 "Add an empty file of this name.");
    }
}

}  // namespace launcher::mediatool
