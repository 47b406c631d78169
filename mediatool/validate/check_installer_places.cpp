// Installers where no launcher looks for them, or under names that it does not know.

#include <algorithm>
#include <vector>

#include "launcher/base/launch_options.h"
#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr char kInstallerStem[] = "zepinsappligui";

// Installers by their name, anywhere below a folder; links are not followed.
void FindInstallers(const Path& folder, std::vector<Path>& found) {
    for (const Entry& entry : EntriesOf(folder)) {
        const Path path = Join(folder, entry.name);
        if (entry.isFolder && !entry.isLink)
            FindInstallers(path, found);
        else if (!entry.isFolder && SameName(entry.name, kInstallerName))
            found.push_back(path);
    }
}

// A file that may be the installer under another name; empty when there is none.
struct OtherName {
    std::string name;
    bool isSure = false;  // it begins as the installer's does
};
OtherName OtherNameIn(const Path& bin) {
    OtherName other;
    for (const Entry& entry : EntriesOf(bin)) {
        if (entry.isFolder) continue;
        const std::string name = InLowerCase(entry.name);
        if (name.starts_with(kInstallerStem)) return {entry.name, true};
        const bool isOther =
            name.ends_with(".exe") && !SameName(name, kPipeServerName) && !SameName(name, kOdtName);
        if (other.name.empty() && isOther) other.name = entry.name;
    }
    return other;
}

// A flavour's folder without the installer that its name promises. A marker says that the installer
// is on a medium of its own: other programs may be in the folder then.
void CheckWithout(const Subject& subject, const FlavourHere& flavour, Findings& out) {
    std::vector<Path> found;
    FindInstallers(Join(subject.Inst(), flavour.osFolder), found);
    if (!found.empty()) {
        out.Add("installer-misplaced", found.front(), {flavour.osFolder});
        return;
    }
    const auto [other, isSure] = OtherNameIn(Parent(flavour.Exe()));
    if (other.empty()) {
        // Libraries that another installer shares may be all that the folder is for.
        const bool isPassedBy = subject.flavours.front().hasInstaller;
        if (!flavour.hasMarker)
            out.AddFirst(
                {{isPassedBy, "installer-missing/not-needed"}, {true, "installer-missing"}},
                flavour.Exe(),
                {flavour.osFolder, FileName(flavour.Marker()), subject.flavours.front().osFolder});
        return;
    }
    out.AddFirst({{isSure || !flavour.hasMarker, "installer-other-name/surely"},
                  {true, "installer-other-name"}},
                 flavour.Exe(), {other, kInstallerName});
}

// The folders in inst that are no flavour's.
std::vector<std::string> OtherFolders(const Subject& subject) {
    std::vector<std::string> names;
    for (const Entry& entry : EntriesOf(subject.Inst()))
        if (entry.isFolder && !subject.HasFlavour(&Flavour::osFolder, entry.name))
            names.push_back(entry.name);
    return names;
}

// An installer below a folder that no launcher looks into, at the place where it would be in one of
// a flavour's name, or anywhere.
void CheckOtherFolders(const Subject& subject, bool anywhere, Findings& out) {
    std::vector<Path> found;
    for (const std::string& name : OtherFolders(subject)) {
        const Path exe = InstallerExecutable(subject.Media(), name, kInstallerName);
        if (Look(exe))
            out.Add("installer-folder-unknown", exe, {name});
        else if (anywhere)
            FindInstallers(Join(subject.Inst(), name), found);
    }
    for (const Path& file : found)
        out.Add("installer-misplaced", file, {subject.flavours.front().osFolder});
}

// Beside inst, or in it.
void CheckOutside(const Subject& subject, Findings& out) {
    const Path& media = subject.Media();
    const auto check = [&](const Path& folder, const std::string& osFolder) {
        if (const Path file = Join(folder, kInstallerName); IsFile(file))
            out.Add("installer-misplaced", file, {osFolder});
    };
    for (const Path& folder :
         {subject.Inst(), media, Join(media, kBinFolder), Join(media, {kCodeFolder, kBinFolder})})
        check(folder, subject.flavours.front().osFolder);
    for (const FlavourHere& flavour : subject.flavours)
        check(Join(media, {flavour.osFolder, kCodeFolder, kBinFolder}), flavour.osFolder);
}

void CheckSecondPlace(const Subject& subject, Findings& out) {
    for (const FlavourHere& flavour : subject.flavours) {
        const Path exe =
            InstallerExecutable(Join(subject.Media(), "1"), flavour.osFolder, kInstallerName);
        if (flavour.hasInstaller && Look(exe)) out.Add("installer-in-two-places", exe);
    }
}

}  // namespace

void CheckInstallerPlaces(const Subject& subject, Findings& out) {
    if (!IsFolder(subject.Inst())) return;
    for (const FlavourHere& flavour : subject.flavours)
        if (!flavour.hasInstaller && IsFolder(Join(subject.Inst(), flavour.osFolder)))
            CheckWithout(subject, flavour, out);
    const bool has64Bit = subject.Has(&FlavourHere::hasInstaller, true);
    CheckOtherFolders(subject, !has64Bit, out);
    if (!has64Bit) CheckOutside(subject, out);
    CheckSecondPlace(subject, out);
}

}  // namespace launcher::mediatool
